import QtQuick
import Clockwell.Ui

// A one-line text field. `text` may be bound to a model; `textEdited` says when to write it back. What an input method is
// still composing belongs to it. `label` is what assistive technology calls it: the text of the FieldLabel above.
FocusScope {
    id: root

    required property string label
    property string placeholder: ""
    property alias text: content.text
    property bool secure: false
    property int keyboard: FieldTraits.DefaultKeyboard
    property int textContentType: FieldTraits.NoContentType
    property int autocap: FieldTraits.NoAutocap
    property int enterKey: Qt.EnterKeyDefault
    property bool reveal: false
    property alias maximumLength: input.maximumLength
    property alias cursorPosition: content.cursorPosition

    signal textEdited
    signal accepted

    implicitWidth: parent?.width ?? 0
    implicitHeight: input.implicitHeight + 2 * 12

    FieldTraits {
        id: traits
        keyboard: root.keyboard
        textContentType: root.textContentType
        autocap: root.autocap
        secure: root.secure
    }

    ContinuousRectangle {
        objectName: "frame"
        anchors.fill: parent
        radius: 11
        color: Theme.surface
        borderColor: Theme.divider
        borderWidth: 1
    }

    TextInput {
        id: input
        objectName: "input"
        x: 12
        width: root.width - 24 - (root.secure ? reveal.width + Math.max(8, reveal.margin) : 0)
        height: root.height
        focus: true
        activeFocusOnTab: true
        clip: true
        containmentMask: drawn
        selectByMouse: true
        verticalAlignment: TextInput.AlignVCenter
        color: Theme.textPrimary
        selectionColor: Theme.brand
        selectedTextColor: Theme.white
        font.family: Theme.fontFamily
        font.pixelSize: Math.round(17 * Theme.textScale)
        passwordCharacter: "•"
        echoMode: root.secure && !root.reveal ? TextInput.Password : TextInput.Normal
        inputMethodHints: traits.hints
        EnterKey.type: root.enterKey
        onAccepted: {
            content.commit();
            root.accepted();
        }

        Accessible.role: Accessible.EditableText
        Accessible.name: root.label
        Accessible.description: root.secure ? "" : root.placeholder

        // The whole frame is the field, but for what a finger needs to hit the eye.
        Item {
            id: drawn
            x: -input.x
            width: root.secure ? reveal.x - reveal.margin : root.width
            height: root.height
        }

        FieldText {
            id: content
            input: input
            onTextChanged: root.textEdited()
        }

        EditMenuControl {
            field: root
            looks: "EditMenu.qml"
        }
    }

    TextLabel {
        objectName: "placeholder"
        anchors.fill: input
        visible: content.text === ""
        text: root.placeholder
        color: Theme.textMuted
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.NoWrap
        Accessible.ignored: true
    }

    Pressable {
        id: reveal
        objectName: "reveal"

        // What it is hit beside itself.
        readonly property real margin: Math.max(0, (Theme.touchTarget - width) / 2)

        anchors.verticalCenter: parent.verticalCenter
        x: root.width - 12 - width
        width: icon.width
        height: icon.height
        visible: root.secure
        onTriggered: root.reveal = !root.reveal

        Accessible.role: Accessible.Button
        Accessible.name: root.reveal ? qsTr("Hide password") : qsTr("Show password")

        Symbol {
            id: icon
            objectName: "eye"
            name: root.reveal ? "eye.slash" : "eye"
            size: 22 * Theme.textScale
            color: Theme.textMuted
        }

        FocusRing {
            shown: reveal.focusVisible
            cornerRadius: 6
        }
    }

    FocusRing {
        objectName: "ring"
        shown: input.activeFocus
        cornerRadius: 11
        gap: 0
    }
}
