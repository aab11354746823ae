import QtQuick
import Clockwell.Ui

// Asks from the bottom of the screen whether something is really meant. Escape, the platform's Back key and a tap beside
// it are its "Cancel": `dismissed`.
Modal {
    id: root

    required property string title
    required property string action
    property bool destructive: false
    property string cancel: "Cancel"

    duration: Theme.duration
    panel: panel
    firstFocus: cancelButton
    tapBesideDismisses: true

    Accessible.role: Accessible.Dialog
    Accessible.name: title

    DialogGround {
        openness: root.openness
    }

    Item {
        id: panel
        readonly property real gap: Theme.unit
        x: Math.round((root.width - width) / 2)
        y: Math.round(root.height - (height + gap) * root.openness)
        width: Math.round(Math.min(root.width - 2 * gap, 400))
        height: question.height + gap + answer.height

        ContinuousRectangle {
            id: question
            width: parent.width
            height: words.height + act.height
            radius: 14
            color: Theme.card
            borderColor: Theme.divider
            borderWidth: 1

            DialogText {
                id: words
                width: parent.width
                maximumHeight: root.height - 4 * panel.gap - act.height - answer.height
                title: root.title
            }

            DialogButton {
                id: act
                y: words.height
                width: parent.width
                color: root.destructive ? Theme.danger : Theme.brand
                title: root.action
                onTriggered: root.accept()
            }
        }

        ContinuousRectangle {
            id: answer
            y: question.height + parent.gap
            width: parent.width
            height: cancelButton.height
            radius: 14
            color: Theme.card
            borderColor: Theme.divider
            borderWidth: 1

            DialogButton {
                id: cancelButton
                width: parent.width
                weight: Font.DemiBold
                title: root.cancel
                onTriggered: root.dismiss()
            }
        }
    }
}
