import QtQuick
import Clockwell.Ui
import Clockwell.Account

// Says over the whole screen that the code was right; the one way on is its button.
FocusScope {
    id: root

    required property bool shown
    required property string title
    required property string message
    required property string button

    signal accepted

    anchors.fill: parent
    z: 1
    visible: shown
    onVisibleChanged: ok.forceActiveFocus()
    Accessible.role: Accessible.Dialog
    Accessible.name: title

    Rectangle {
        anchors.fill: parent
        color: Theme.background
        opacity: 0.75
    }

    MouseArea {
        anchors.fill: parent
        Accessible.ignored: true
    }

    Flickable {
        id: flickable
        anchors.centerIn: parent
        width: Math.round(Math.min(root.width - 2 * Theme.margin, 340))
        height: Math.round(Math.min(contentHeight, root.height - 2 * Theme.margin))
        contentHeight: card.height
        boundsBehavior: Flickable.StopAtBounds
        clip: contentHeight > height

        Card {
            id: card
            width: flickable.width

            Column {
                width: parent.width
                spacing: Theme.unit

                TextLabel {
                    width: parent.width
                    weight: Font.DemiBold
                    horizontalAlignment: Text.AlignHCenter
                    text: root.title
                }

                TextLabel {
                    width: parent.width
                    size: 13
                    color: Theme.textSecondary
                    horizontalAlignment: Text.AlignHCenter
                    text: root.message
                    Accessible.role: Accessible.AlertMessage
                }

                Item {
                    width: parent.width
                    height: ok.y + ok.height

                    PrimaryButton {
                        id: ok
                        y: Theme.unit
                        width: parent.width
                        focus: true
                        title: root.button
                        onTriggered: root.accepted()
                    }
                }
            }
        }
    }
}
