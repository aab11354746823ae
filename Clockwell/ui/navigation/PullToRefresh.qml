import QtQuick
import Clockwell.Ui

// Pull to refresh for the list or page `flickable`, as an item beside it: a disc comes down with the content, its
// spokes turning with the pull, and stays until the refresh is over. Finger, mouse, wheel and touchpad pull; F5, Ctrl+R
// and assistive technology refresh too. Meanwhile the content rests below its top; where it is scrolled it stays.
Item {
    id: root

    required property Flickable flickable // whose top margin is this item's
    property bool refreshing: false // asked for by `triggered`
    property bool loading: false // nobody pulled: the disc shows, the content stays where it is
    readonly property bool busy: refreshing || loading

    readonly property real threshold: 72
    readonly property real rest: 56
    readonly property real pull: Math.max(0, flickable.originY - flickable.contentY)
    readonly property real progress: Math.min(1, pull / threshold)
    property int held: 0 // how far below its top the content is kept
    property real wheeled: 0 // before the resistance, which is that of a Flickable

    // Where the content stays the disc is at its side, off a title, level with the title's middle where that is told.
    property real asideCenter: 0
    readonly property real aside: Math.min(flickable.width, 600) / 2 - width / 2 - Theme.margin
    readonly property real center: loading && asideCenter > 0 ? asideCenter : rest / 2

    signal triggered

    function refresh() {
        if (enabled && visible && !refreshing)
            triggered();
    }
    function letGo() {
        wheeled = 0;
        if (pull >= threshold)
            refresh();
    }
    function settle() {
        held = flickable.contentY <= flickable.originY - flickable.topMargin ? pull : held;
        sliding.to = refreshing ? rest : 0;
        sliding.restart();
    }
    function pullByWheel(wheel: WheelEvent) {
        const distance = wheel.pixelDelta.y || wheel.angleDelta.y / 120 * 48;
        const begins = flickable.atYBeginning && distance > 0 && wheel.phase !== Qt.ScrollMomentum && !scrolled.running;
        wheel.accepted = enabled && !refreshing && !flickable.dragging && (wheeled > 0 || begins);
        if (!wheel.accepted && distance !== 0) {
            scrolled.restart();
        } else if (wheel.accepted && wheel.phase !== Qt.ScrollMomentum) {
            sliding.stop();
            wheeled = Math.max(0, Math.min(wheeled + distance, 240));
            held = wheeled / 2;
            silence.interval = wheel.phase === Qt.ScrollEnd ? 0 : 160;
            silence.restart();
        }
    }

    x: Math.round(flickable.x + (flickable.width - width) / 2 + (loading ? aside : 0))
    y: Math.round(flickable.y + center - height / 2)
    width: 40
    height: 40

    Accessible.role: Accessible.Button
    Accessible.name: "Refresh"
    Accessible.ignored: refreshing
    Accessible.onPressAction: refresh()

    onRefreshingChanged: settle()
    onHeldChanged: {
        const follows = flickable.contentY <= flickable.originY - flickable.topMargin && !flickable.dragging;
        flickable.topMargin = held;
        if (follows)
            flickable.contentY = flickable.originY - held;
    }

    Motion {
        id: sliding
        target: root
        property: "held"
    }

    Connections {
        target: root.flickable
        function onDraggingChanged() {
            if (!root.flickable.dragging)
                root.letGo();
        }
    }

    // A WheelHandler cannot leave an event to the Flickable by its direction.
    MouseArea {
        parent: root.flickable
        anchors.fill: parent
        acceptedButtons: Qt.NoButton
        onWheel: wheel => root.pullByWheel(wheel)
    }

    // A wheel does not say when it is let go.
    Timer {
        id: silence
        onTriggered: {
            root.letGo();
            root.settle();
        }
    }

    // A wheel that scrolled to the top does not pull before it has rested.
    Timer {
        id: scrolled
        interval: 300
    }

    Shortcut {
        sequences: ["F5", "Ctrl+R"]
        enabled: root.visible && root.enabled
        onActivated: root.refresh()
    }

    // Announced when it appears.
    Item {
        anchors.fill: parent
        visible: root.refreshing
        Accessible.role: Accessible.AlertMessage
        Accessible.name: "Refreshing"
    }

    ContinuousRectangle {
        objectName: "disc"
        y: root.busy ? 0 : Math.min(0, Math.round(root.pull) - root.rest)
        width: root.width
        height: root.height
        radius: 20
        color: Theme.surface
        borderColor: Theme.divider
        borderWidth: 1
        opacity: root.busy ? 1 : root.progress
        visible: opacity > 0

        Spinner {
            anchors.centerIn: parent
            color: root.busy || root.progress >= 1 ? Theme.brand : Theme.textMuted
            running: root.busy
            rotation: root.busy ? 0 : Math.floor(root.progress * 8) * 45
        }
    }
}
