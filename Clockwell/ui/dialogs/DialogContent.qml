import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// The content of an alert, a dialog or a sheet, with what Qt 6.4's Popup lacks: it closes with the screen that it is
// declared in, takes no tap before it is open, gives the focus back at once, and hears the Back key on every platform.
DialogScope {
    id: root

    required property T.Popup popup
    required property bool shown
    required property string title // for assistive technology
    property Item firstFocus: root

    property Item home // where the popup is declared
    property Item returnFocus
    property bool byKeyboard: false
    readonly property Item popupItem: parent?.parent ?? null
    readonly property Item focused: home?.Window.activeFocusItem ?? null
    readonly property bool up: shown && isInFront()

    // Escape or Back.
    signal back

    // No screen around it is covered or leaves, and no dialog around it closes.
    function isInFront(): bool {
        for (let item = home; item?.parent; item = item.parent) {
            if (item instanceof DialogContent)
                return item.up;
            if (item.parent instanceof NavigationStack && item.parent.currentItem !== item)
                return false;
        }
        return popup.parent !== null && popup.parent !== home && home.visible;
    }

    anchors.fill: parent
    focus: true
    Keys.onEscapePressed: event => event.isAutoRepeat || back()
    Keys.onBackPressed: event => event.isAutoRepeat || back()
    onFocusedChanged: afterwards.start()
    onUpChanged: popup.visible = up
    Component.onCompleted: {
        home = popup.parent;
        popup.parent = Qt.binding(() => home.T.Overlay.overlay);
    }

    Connections {
        target: root.popup

        function onAboutToShow() {
            root.cancelPresses();
            root.popupItem.Accessible.name = root.title;
            root.returnFocus = root.focused;
            root.byKeyboard = root.focused?.visualFocus ?? false;
        }
        function onVisibleChanged() {
            if (root.popup.visible)
                root.firstFocus.forceActiveFocus(root.byKeyboard ? Qt.TabFocusReason : Qt.PopupFocusReason);
        }
        function onAboutToHide() {
            root.cancelPresses();
            if (!root.focused || root.focused === root.home.Window.contentItem)
                (root.returnFocus ?? root.home).forceActiveFocus(root.byKeyboard ? Qt.ShortcutFocusReason : Qt.PopupFocusReason);
            afterwards.start();
        }
    }

    Timer {
        id: afterwards
        interval: 0
        onTriggered: {
            root.popup.visible = root.up; // its owner may keep it
            const layers = root.popup.parent?.visibleChildren ?? [];
            if (root.up && !root.popup.activeFocus && layers[layers.length - 1] === root.popupItem)
                root.forceActiveFocus(Qt.PopupFocusReason); // whoever gave it to what lies below
        }
    }

    MouseArea {
        anchors.fill: parent
        z: 1
        visible: !root.popup.opened
        acceptedButtons: Qt.AllButtons
        onWheel: wheel => wheel.accepted = true
    }
}
