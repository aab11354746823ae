import QtQuick
import Clockwell.Ui

// The title and the message of an alert or a dialog, with the rule below them. What is higher than it may be scrolls.
Flickable {
    id: root

    required property string title
    property string message: ""
    property bool prominent: false
    required property real maximumHeight

    height: Math.round(Math.min(contentHeight, maximumHeight))
    contentHeight: column.height + rule.height
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    clip: interactive

    Column {
        id: column
        width: root.width
        leftPadding: 16
        rightPadding: leftPadding
        topPadding: root.prominent ? 20 : 14
        bottomPadding: topPadding
        spacing: 4

        TextLabel {
            width: root.width - 2 * column.leftPadding
            size: root.prominent ? 17 : 13
            weight: root.prominent ? Font.DemiBold : Font.Normal
            color: root.prominent ? Theme.textPrimary : Theme.textSecondary
            horizontalAlignment: Text.AlignHCenter
            text: root.title
            Accessible.role: Accessible.AlertMessage
        }

        TextLabel {
            width: root.width - 2 * column.leftPadding
            visible: root.message !== ""
            size: 13
            color: Theme.textSecondary
            horizontalAlignment: Text.AlignHCenter
            text: root.message
            Accessible.role: Accessible.AlertMessage
        }
    }

    Rectangle {
        id: rule
        parent: root // does not scroll
        y: root.height - height
        width: root.width
        height: 1
        color: Theme.divider
    }
}
