import QtQuick
import Clockwell.Ui

// Around the control that has the keyboard: `shown` says when, `radius` is the control's own corner.
ContinuousRectangle {
    property bool shown: false
    property real cornerRadius: 8
    property real gap: 2

    anchors.fill: parent
    anchors.margins: -gap - borderWidth
    visible: shown
    radius: cornerRadius + gap + borderWidth
    borderColor: Theme.brand
    borderWidth: 2
}
