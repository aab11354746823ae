import QtQuick
import Clockwell.Ui

// One answer in an alert or a dialog, as wide as it.
LinkButton {
    role: Accessible.Button
    size: 17
    implicitWidth: parent?.width ?? 0
    implicitHeight: Math.max(50, implicitContentHeight + 2 * 14)
    horizontalPadding: 16
    cornerRadius: 10
    ringGap: -6
}
