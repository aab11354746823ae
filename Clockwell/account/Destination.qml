import QtQuick
import Clockwell.Ui
import Clockwell.Account

// Pushes a screen when `shown`, bound to a flag of the model of the screen that it comes from, turns true; when that
// screen is on top again, `left` asks for the flag to be cleared. Pushes nothing over a screen that is being popped.
QtObject {
    id: root

    required property NavigationStack stack
    required property Item from
    required property url file
    required property var properties
    required property bool shown
    readonly property bool onTop: stack.currentItem === from

    signal left

    onShownChanged: {
        if (shown && onTop)
            stack.push(file, properties);
        if (shown && onTop) // it could not be loaded
            left();
    }
    onOnTopChanged: if (onTop && shown)
        left()
}
