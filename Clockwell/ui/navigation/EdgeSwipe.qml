import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// Lets a finger or mouse drag the topmost screen of a stack aside from the left edge, which Qt has no part for. Let go
// beyond half of the way, or with a flick, that is the screen's `back`; else it springs back.
Item {
    id: root

    required property T.StackView stack
    required property Item below // what the topmost screen covers
    required property real parallax // of that, as a part of the way
    readonly property bool possible: below !== null && typeof stack.currentItem?.["back"] === "function" && !stack.busy
                                     && stack.currentItem.activeFocus // not below a dialog
    property var screen: null // that is being pulled
    property Item uncovered: null // by the pull
    property real pulled: 0 // points

    function springBack() {
        if (screen)
            spring.start();
    }
    // Once the stack shows another screen.
    function end() {
        if (stack.currentItem === uncovered) // it goes on from where it was let go
            screen = null;
        pulled = 0;
        screen = null;
        spring.stop();
    }

    // Below the screens: a DragHandler above would keep presses from them.
    z: -1
    width: 24
    height: parent.height
    onPossibleChanged: afterwards.start()
    onPulledChanged: if (screen) {
        screen.x = pulled;
        uncovered.x = Math.round(parallax * (pulled - stack.width));
        uncovered.visible = pulled > 0;
    }

    DragHandler {
        id: drag

        property bool astray: false // it went elsewhere first
        property real velocity: 0 // points per second

        function follow() {
            const at = (active ? centroid : finger.point).scenePosition; // once active, it hears of a move first
            const aside = at.x - finger.point.scenePressPosition.x;
            const down = Math.abs(at.y - finger.point.scenePressPosition.y);
            if (active) {
                velocity = centroid.velocity.x;
                rest.restart();
                if (root.screen && !spring.running)
                    root.pulled = Math.max(0, Math.min(aside, root.stack.width));
            } else if (Math.max(-aside, down) >= dragThreshold && aside <= down) {
                astray = true;
            }
        }
        function letGo() {
            const far = root.pulled > root.stack.width / 2;
            if (root.possible && !spring.running && (velocity > 600 || (velocity > -600 && far)))
                root.screen?.back();
            root.springBack(); // unless it went
        }

        target: null
        xAxis.enabled: !astray
        yAxis.enabled: false
        enabled: active || (root.possible && !spring.running)
        onCentroidChanged: follow()
        onActiveChanged: if (active) {
            root.uncovered = root.below;
            root.screen = root.stack.currentItem;
            follow();
        }
        onGrabChanged: transition => {
            if (transition === PointerDevice.GrabPassive)
                astray = false;
            else if (transition === PointerDevice.UngrabExclusive)
                letGo();
            else if (transition === PointerDevice.CancelGrabExclusive)
                root.springBack();
        }
    }

    // One that is held still is no flick.
    Timer {
        id: rest
        interval: 100
        onTriggered: drag.velocity = 0
    }

    Motion {
        id: spring
        target: root
        property: "pulled"
        to: 0
        onStopped: root.screen = null
    }

    // A screen that goes needs no spring.
    Timer {
        id: afterwards
        interval: 0
        onTriggered: root.springBack()
    }

    // Above the screens: Qt 6.4's text fields overwrite the place of a touch for what gets it after them.
    Item {
        parent: root.stack
        z: 1
        width: root.width
        height: parent.height

        PointHandler {
            id: finger
        }
    }

    // A second finger, or a press after one that was never let go.
    MouseArea {
        parent: root.stack
        z: 1
        anchors.fill: parent
        visible: root.screen !== null
        acceptedButtons: Qt.AllButtons

        PointHandler {
            onActiveChanged: root.springBack()
        }
    }
}
