import QtQuick
import Clockwell.Ui

// What dims the screen below an alert, a dialog or a sheet.
Rectangle {
    required property real openness

    anchors.fill: parent
    color: Theme.dim
    opacity: openness
}
