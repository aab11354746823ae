import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// Asks from the bottom of the screen whether something is really meant. Escape, the platform's Back key and a tap beside
// it are its "Cancel": `rejected`.
T.Dialog {
    id: root

    property bool shown: false
    required property string action
    property bool destructive: false
    property string cancel: "Cancel"
    property real openness: 0

    x: Math.round(((parent?.width ?? 0) - width) / 2)
    y: Math.round((parent?.height ?? 0) - (height + Theme.unit) * openness)
    width: Math.round(Math.min((parent?.width ?? 0) - 2 * Theme.unit, 400))
    height: answer.y + answer.height
    modal: true
    focus: true
    closePolicy: opened ? T.Popup.CloseOnReleaseOutside : T.Popup.NoAutoClose
    T.Overlay.modal: DialogDim {}

    enter: Transition {
        Motion {
            property: "openness"
            to: 1
        }
        SecondTap {}
    }
    exit: Transition {
        Motion {
            property: "openness"
            to: 0
        }
    }

    DialogContent {
        popup: root
        shown: root.shown
        title: root.title
        firstFocus: cancelButton
        onBack: root.reject()

        Panel {
            id: question
            width: parent.width
            height: words.height + act.height

            DialogText {
                id: words
                width: parent.width
                maximumHeight: (root.parent?.height ?? 0) - 4 * Theme.unit - act.height - answer.height
                title: root.title
            }

            DialogButton {
                id: act
                y: words.height
                width: parent.width
                color: root.destructive ? Theme.danger : Theme.brand
                text: root.action
                onClicked: root.accept()
            }
        }

        Panel {
            id: answer
            y: question.height + Theme.unit
            width: parent.width
            height: cancelButton.height

            DialogButton {
                id: cancelButton
                width: parent.width
                weight: Font.DemiBold
                text: root.cancel
                onClicked: root.reject()
            }
        }
    }
}
