import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// Requests a new position. Stays enabled while the request is running.
Button {
    id: root

    required text
    property bool busy: false

    implicitHeight: Math.max(Theme.touchTarget, label.height + 16)

    Row {
        anchors.centerIn: parent
        spacing: 8
        opacity: root.pressed ? 0.5 : 1

        Item {
            id: iconBox
            anchors.verticalCenter: parent.verticalCenter
            width: Math.round(20 * Theme.textScale)
            height: width

            Symbol {
                anchors.centerIn: parent
                name: "location.circle"
                size: iconBox.width
                color: Theme.brand
                visible: !root.busy
            }
            Spinner {
                anchors.centerIn: parent
                size: Math.round(16 * Theme.textScale)
                color: Theme.brand
                visible: root.busy
            }
        }
        TextLabel {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, root.width - iconBox.width - 8)
            text: root.text
            size: 14
            weight: Font.Medium
            color: Theme.brand
            Accessible.ignored: true
        }
    }
}
