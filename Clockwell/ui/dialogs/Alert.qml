import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// Something that has to be read before going on: a title, perhaps a message, and one button, which Escape and the
// platform's Back key are too.
T.Dialog {
    id: root

    property bool shown: false
    property string message: ""
    required property string button

    anchors.centerIn: parent
    width: Math.round(Math.min((parent?.width ?? 0) - 2 * Theme.margin, 300))
    height: words.height + confirm.height
    modal: true
    focus: true
    closePolicy: T.Popup.NoAutoClose
    T.Overlay.modal: DialogDim {}

    enter: Transition {
        Motion {
            property: "opacity"
            from: 0
            to: 1
        }
        Motion {
            property: "scale"
            from: 1.08
            to: 1
        }
        SecondTap {}
    }
    exit: Transition {
        Motion {
            property: "opacity"
            to: 0
        }
        Motion {
            property: "scale"
            to: 1.08
        }
    }

    background: Panel {}

    DialogContent {
        popup: root
        shown: root.shown
        title: root.title
        firstFocus: confirm
        onBack: root.accept()

        DialogText {
            id: words
            width: parent.width
            maximumHeight: (root.parent?.height ?? 0) - 2 * Theme.margin - confirm.height
            title: root.title
            message: root.message
            prominent: true
        }

        DialogButton {
            id: confirm
            y: words.height
            width: parent.width
            weight: Font.DemiBold
            text: root.button
            onClicked: root.accept()
        }
    }
}
