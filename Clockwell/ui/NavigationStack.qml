import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// A stack of screens. A pushed screen slides in from the trailing edge; one that has a `back` signal is popped by it.
T.StackView {
    id: stack

    readonly property Connections backConnection: Connections {
        target: stack.depth > 1 ? stack.currentItem : null
        ignoreUnknownSignals: true
        function onBack() { stack.pop() }
    }

    onCurrentItemChanged: if (currentItem) currentItem.forceActiveFocus()

    pushEnter: Transition {
        NumberAnimation { property: "x"; from: stack.width; to: 0; duration: Theme.duration; easing.type: Easing.OutCubic }
    }
    pushExit: Transition {
        NumberAnimation { property: "x"; from: 0; to: -stack.width / 4; duration: Theme.duration; easing.type: Easing.OutCubic }
    }
    popEnter: Transition {
        NumberAnimation { property: "x"; from: -stack.width / 4; to: 0; duration: Theme.duration; easing.type: Easing.OutCubic }
    }
    popExit: Transition {
        NumberAnimation { property: "x"; from: 0; to: stack.width; duration: Theme.duration; easing.type: Easing.OutCubic }
    }
}
