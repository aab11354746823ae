import QtQuick
import Clockwell.Ui

// Something that has to be read before going on: a title, perhaps a message, and one button. Escape and the platform's
// Back key are that button.
Modal {
    id: root

    required property string title
    property string message: ""
    required property string button

    duration: Theme.duration
    panel: panel
    firstFocus: confirm
    onDismissed: accept()

    Accessible.role: Accessible.Dialog
    Accessible.name: title

    DialogGround {
        openness: root.openness
    }

    ContinuousRectangle {
        id: panel
        anchors.centerIn: parent
        width: Math.round(Math.min(root.width - 2 * Theme.margin, 300))
        height: words.height + confirm.height
        radius: 14
        color: Theme.card
        borderColor: Theme.divider
        borderWidth: 1
        opacity: root.openness
        scale: 1.08 - 0.08 * root.openness

        DialogText {
            id: words
            width: parent.width
            maximumHeight: root.height - 2 * Theme.margin - confirm.height
            title: root.title
            message: root.message
            prominent: true
        }

        DialogButton {
            id: confirm
            y: words.height
            width: parent.width
            weight: Font.DemiBold
            title: root.button
            onTriggered: root.accept()
        }
    }
}
