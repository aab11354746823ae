import QtQuick
import Clockwell.Ui

// A one-line text field. `text` may be bound to a model; `textEdited` says when to write it back. `label` is what
// assistive technology calls it: the text of the FieldLabel above.
FormTextField {
    id: control

    required label
    property alias placeholder: control.placeholderText
    property bool secure: false
    property bool reveal: false
    property int keyboard: FieldTraits.DefaultKeyboard
    property int textContentType: FieldTraits.NoContentType
    property int autocap: FieldTraits.NoAutocap
    property int enterKey: Qt.EnterKeyDefault

    function isSelectedAt(position: int): bool {
        return selectionStart < selectionEnd && selectionStart <= position && position <= selectionEnd;
    }

    function openMenu(byKeyboard: bool) {
        if (!isWithinReach())
            return;
        commit(); // a change of the text would close it
        forceActiveFocus(Qt.PopupFocusReason);
        menu.setSource("EditMenu.qml", { field: control, current: byKeyboard ? 0 : -1 });
        (menu.item as EditMenu).show();
    }

    implicitWidth: parent?.width ?? 0
    implicitHeight: contentHeight + topPadding + bottomPadding
    padding: 12
    rightPadding: secure ? width - eye.x + Math.max(8, eye.margin) : 12
    verticalAlignment: TextInput.AlignVCenter
    selectByMouse: true
    color: Theme.textPrimary
    selectionColor: Theme.brand
    selectedTextColor: Theme.white
    font.family: Theme.fontFamily
    font.pixelSize: Math.round(17 * Theme.textScale)
    passwordCharacter: "•"
    echoMode: secure && !reveal ? TextInput.Password : TextInput.Normal
    inputMethodHints: Qt.ImhNoPredictiveText | keyboard | autocap | textContentType
                      | (secure ? Qt.ImhSensitiveData | Qt.ImhHiddenText : Qt.ImhNone)
    EnterKey.type: enterKey

    // In a masked text, where words begin is part of the secret.
    onPressAndHold: event => {
        if (!finger.pressed || !isWithinReach())
            return;
        const position = positionAt(event.x, event.y);
        const character = positionAt(event.x, event.y, TextInput.CursorOnCharacter);
        const isOnWord = event.x < positionToRectangle(length).x + leftPadding && text[character] !== " ";
        if (!isSelectedAt(position)) {
            cursorPosition = isOnWord ? character : position;
            if (isOnWord)
                echoMode === TextInput.Normal ? selectWord() : selectAll();
        }
        openMenu(false);
    }
    onPressed: event => {
        commit(); // a moving cursor would drop it
        if (event.button !== Qt.RightButton)
            return;
        const position = positionAt(event.x, event.y);
        if (!isSelectedAt(position))
            cursorPosition = position;
        openMenu(false);
    }
    onMenuRequested: openMenu(true)
    Keys.forwardTo: menu.item ? [(menu.item as EditMenu).contentItem] : []
    Keys.onShortcutOverride: event => event.accepted = menu.item && event.key === Qt.Key_Escape

    Accessible.role: Accessible.EditableText
    Accessible.name: label
    Accessible.description: secure ? "" : placeholder

    background: ContinuousRectangle {
        radius: 11
        color: Theme.surface
        borderColor: Theme.divider
        borderWidth: 1

        FocusRing {
            objectName: "ring"
            shown: control.activeFocus
            cornerRadius: 11
            gap: 0
        }
    }

    // Qt 6.4's text field does not notice that what scrolls has taken its press away.
    TapHandler {
        id: finger
    }

    Loader {
        id: menu

        Connections {
            target: menu.item as EditMenu
            function onClosed() {
                menu.source = "";
            }
        }
    }

    TextLabel {
        anchors.fill: parent
        leftPadding: control.leftPadding
        rightPadding: control.rightPadding
        visible: control.text === ""
        text: control.placeholder
        color: Theme.textMuted
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.NoWrap
        Accessible.ignored: true
    }

    Button {
        id: eye

        // What it is hit beside itself.
        readonly property real margin: Math.max(0, (Theme.touchTarget - width) / 2)

        anchors.verticalCenter: parent.verticalCenter
        x: control.width - 12 - width
        visible: control.secure
        cornerRadius: 6
        text: control.reveal ? "Hide password" : "Show password"
        onClicked: control.reveal = !control.reveal

        contentItem: Symbol {
            name: control.reveal ? "eye.slash" : "eye"
            size: 22 * Theme.textScale
            color: Theme.textMuted
        }
    }
}
