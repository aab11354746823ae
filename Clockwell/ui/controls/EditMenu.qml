pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// What can be done with the text of a field: a bar beside it, or a column where a bar is too wide. The field keeps the
// focus, and so the on-screen keyboard, which a Menu would take; its keys are forwarded to the content.
T.Popup {
    id: menu

    required property FormTextField field
    readonly property bool masked: field.echoMode !== TextInput.Normal
    readonly property int selected: field.selectionEnd - field.selectionStart
    readonly property var entries: sensible([
        { sensible: selected > 0 && !masked && !field.readOnly, title: "Cut", run: () => field.cut() },
        { sensible: selected > 0 && !masked, title: "Copy", run: () => field.copy() },
        { sensible: field.canPaste, title: "Paste", run: () => field.pasteLine() },
        { sensible: field.length > selected, title: "Select all", run: () => field.selectAll() }
    ])
    // A change of any of these closes it.
    readonly property var opening: [field.text, field.echoMode, field.activeFocus, field.visible, field.enabled,
        field.Window.width]
    property int current: -1 // what the keyboard has reached
    property bool stacked: false
    property real widest: 0

    readonly property Component entryButton: LinkButton {
        id: entry

        required property int index
        required property var modelData

        text: modelData.title
        size: 15
        weight: Font.Medium
        color: Theme.textPrimary
        width: menu.stacked ? menu.widest : implicitWidth
        implicitWidth: Math.max(Theme.touchTarget, Math.ceil(implicitContentWidth) + 2 * 16)
        implicitHeight: Math.max(Theme.touchTarget, Math.ceil(implicitContentHeight) + 2 * 10)
        focusPolicy: Qt.NoFocus
        ringShown: index === menu.current
        cornerRadius: 12
        ringGap: -6
        onImplicitWidthChanged: menu.widest = Math.max(menu.widest, implicitWidth)
        onClicked: menu.choose(index)

        role: Accessible.MenuItem
        Accessible.focused: ringShown

        Rectangle {
            visible: entry.index > 0
            x: menu.stacked ? 1 : 0
            y: menu.stacked ? 0 : 1
            width: menu.stacked ? entry.width - 2 : 1
            height: menu.stacked ? 1 : entry.height - 2
            color: Theme.divider
        }
    }

    function sensible(entries: var): var {
        return entries.filter(entry => entry.sensible);
    }

    function show() {
        entries.length > 0 ? open() : closed();
    }

    function choose(index: int) {
        const entry = entries[index];
        close();
        entry.run();
    }

    // Above the field, or below it where there is no room; over the cursor, but between the sides of the field. The
    // margins keep it inside the window.
    function place() {
        const corner = field.mapToItem(null, 0, 0);
        const start = field.positionToRectangle(field.selectionStart).x;
        const end = field.positionToRectangle(field.selectionEnd).x;
        const centred = (start + end - width) / 2 + field.leftPadding;
        const left = width > field.width ? centred : Math.max(0, Math.min(centred, field.width - width));
        const above = corner.y - topMargin - 8;
        const below = field.Window.height - corner.y - field.height - bottomMargin - 8;
        const isAbove = above >= height || (below < height && above >= below);
        x = Math.round(corner.x + left) - corner.x;
        y = Math.round(corner.y + (isAbove ? -8 - height : field.height + 8)) - corner.y;
    }

    parent: field
    margins: 8
    bottomMargin: 8 + (InputMethod.visible ? InputMethod.keyboardRectangle.height / Screen.devicePixelRatio : 0)
    implicitWidth: implicitContentWidth
    implicitHeight: implicitContentHeight
    closePolicy: T.Popup.CloseOnPressOutside
    onOpeningChanged: close()
    onAboutToShow: {
        stacked = implicitWidth > field.Window.width - leftMargin - rightMargin;
        place();
    }

    background: ContinuousRectangle {
        radius: 12
        color: Qt.lighter(Theme.surface, 1.25) // nearer than the fields
        borderColor: Theme.textMuted
        borderWidth: 1

        WheelHandler {
            margin: 10000 // wherever it turns
            blocking: false
            acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
            onWheel: menu.close()
        }
    }

    contentItem: Grid {
        columns: menu.stacked ? 1 : menu.entries.length

        Accessible.role: Accessible.PopupMenu
        Accessible.name: "Edit"

        Keys.onPressed: event => {
            const count = menu.entries.length;
            const plain = (event.modifiers & ~Qt.KeypadModifier) === Qt.NoModifier;
            const isF10 = event.key === Qt.Key_F10 && event.modifiers === Qt.ShiftModifier;
            const is = (...keys) => keys.includes(event.key);
            event.accepted = true;
            if (is(Qt.Key_Backtab) || plain && is(Qt.Key_Left, Qt.Key_Up))
                menu.current = menu.current > 0 ? menu.current - 1 : count - 1;
            else if (plain && is(Qt.Key_Tab, Qt.Key_Right, Qt.Key_Down))
                menu.current = (menu.current + 1) % count;
            else if (isF10 || is(Qt.Key_Escape, Qt.Key_Back, Qt.Key_Menu))
                event.isAutoRepeat || menu.close();
            else if (plain && menu.current >= 0 && is(Qt.Key_Return, Qt.Key_Enter, Qt.Key_Select, Qt.Key_Space))
                event.isAutoRepeat || menu.choose(menu.current);
            else {
                event.accepted = false; // typing: the field's again
                is(Qt.Key_Shift, Qt.Key_Control, Qt.Key_Alt, Qt.Key_AltGr, Qt.Key_Meta) || menu.close();
            }
        }

        Repeater {
            model: menu.entries

            delegate: menu.entryButton
        }
    }
}
