import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// Declared in a button, which forwards its keys to it: the hand of the mouse, Enter as a key that presses, and the ring
// that says where the keyboard is, until a pointer is used.
Item {
    id: root

    required property T.AbstractButton button
    property bool ringShown: button.visualFocus
    property real cornerRadius: 8
    property real ringGap: 2

    function pressByKey(event: KeyEvent) {
        if (!event.isAutoRepeat)
            button.clicked(); // click() from Qt 6.8 on
    }

    anchors.fill: parent
    containmentMask: button.containmentMask

    Keys.onReturnPressed: event => pressByKey(event)
    Keys.onEnterPressed: event => pressByKey(event)
    Keys.onSelectPressed: event => pressByKey(event)
    Keys.onReleased: event => event.accepted = event.isAutoRepeat // Qt 6.4 would press again and again while Space is held

    // In the button itself, handlers would make it react to every mouse button.
    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }

    PointHandler {
        onActiveChanged: root.button.focusReason = Qt.MouseFocusReason
    }

    FocusRing {
        objectName: "ring"
        shown: root.ringShown
        cornerRadius: root.cornerRadius
        gap: root.ringGap
    }
}
