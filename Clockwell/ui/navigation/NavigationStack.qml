import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// A StackView whose topmost screen has the keyboard and goes by its own `back` signal, if it has one, or is dragged away
// from the left edge.
T.StackView {
    id: stack

    // Screens change places or are being pulled: nothing in them can be pressed.
    readonly property bool moving: busy || swipe.screen !== null
    readonly property Item below: depth > 1 ? find((screen, index) => index < currentItem.T.StackView.index) : null

    onCurrentItemChanged: {
        swipe.end();
        currentItem?.forceActiveFocus();
    }

    component Slide: Motion {
        property: "x"
        to: 0
    }
    component Fade: Motion {
        property: "opacity"
        to: 0
    }

    pushEnter: Transition {
        Slide {
            from: stack.width
        }
    }
    pushExit: Transition {
        Slide {
            from: 0
            to: -swipe.parallax * stack.width
        }
    }
    popEnter: Transition {
        Slide {}
    }
    popExit: Transition {
        Slide {
            to: stack.width
        }
    }
    replaceEnter: Transition {
        Fade {
            from: 0
            to: 1
        }
    }
    replaceExit: Transition {
        Fade {}
    }

    EdgeSwipe {
        id: swipe
        stack: stack
        below: stack.below
        parallax: 0.25
    }

    Connections {
        target: stack.currentItem
        ignoreUnknownSignals: true
        function onBack() {
            if (stack.below)
                stack.pop(stack.below);
        }
    }

    // Both screens are there for the Tab key while they move.
    Connections {
        target: stack.Window.window
        function onActiveFocusItemChanged() {
            if (stack.moving && stack.activeFocus && !stack.currentItem.activeFocus)
                stack.currentItem.forceActiveFocus();
        }
    }
}
