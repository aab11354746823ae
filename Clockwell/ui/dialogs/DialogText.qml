import QtQuick
import Clockwell.Ui

// The title and the message of an alert or a dialog, with the rule below them. What is higher than it may be scrolls.
Item {
    id: root

    required property string title
    property string message: ""
    property bool prominent: false
    required property real maximumHeight

    height: Math.round(Math.min(column.height + 2 * flickable.y, maximumHeight)) + rule.height

    Flickable {
        id: flickable
        x: 16
        y: root.prominent ? 20 : 14
        width: root.width - 2 * x
        height: root.height - rule.height - 2 * y
        contentHeight: column.height
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height
        clip: interactive

        Column {
            id: column
            width: flickable.width
            spacing: 4

            TextLabel {
                width: parent.width
                size: root.prominent ? 17 : 13
                weight: root.prominent ? Font.DemiBold : Font.Normal
                color: root.prominent ? Theme.textPrimary : Theme.textSecondary
                horizontalAlignment: Text.AlignHCenter
                text: root.title
                Accessible.role: Accessible.AlertMessage
            }

            TextLabel {
                width: parent.width
                visible: root.message !== ""
                size: 13
                color: Theme.textSecondary
                horizontalAlignment: Text.AlignHCenter
                text: root.message
                Accessible.role: Accessible.AlertMessage
            }
        }
    }

    Rectangle {
        id: rule
        y: root.height - height
        width: root.width
        height: 1
        color: Theme.divider
    }
}
