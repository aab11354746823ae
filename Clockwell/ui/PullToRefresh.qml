import QtQuick
import Clockwell.Ui

// Pull to refresh for the list or page `flickable`, as an item beside it: a disc comes down with the content, its
// spokes turning with the pull, and stays until the refresh is over. F5 and Ctrl+R refresh too.
PullToRefreshControl {
    id: root

    // A load that nobody pulled for: the disc shows, the content stays where it is.
    property bool loading: false
    readonly property bool busy: refreshing || loading

    // Where the content stays the disc is at its side, off a title, level with the title's middle where that is told.
    property real asideCenter: 0
    readonly property real aside: Math.min(flickable.width, 600) / 2 - width / 2 - Theme.margin
    readonly property real center: loading && asideCenter > 0 ? asideCenter : rest / 2

    x: Math.round(flickable.x + (flickable.width - width) / 2 + (loading ? aside : 0))
    y: Math.round(flickable.y + center - height / 2)
    width: 40
    height: 40
    duration: Theme.duration

    Accessible.role: Accessible.Button
    Accessible.name: label

    Shortcut {
        sequences: ["F5", "Ctrl+R"]
        enabled: root.visible && root.enabled
        onActivated: root.refresh()
    }

    ContinuousRectangle {
        objectName: "disc"
        y: root.loading ? 0 : root.indicatorOffset
        width: root.width
        height: root.height
        radius: 20
        color: Theme.surface
        borderColor: Theme.divider
        borderWidth: 1
        opacity: root.busy ? 1 : root.progress
        visible: opacity > 0

        Spinner {
            objectName: "spinner"
            anchors.centerIn: parent
            color: root.busy || root.progress >= 1 ? Theme.brand : Theme.textMuted
            still: !root.busy || Theme.reducedMotion
            rotation: root.busy ? 0 : root.turn
        }
    }
}
