import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// Pulling the content of `flickable` down past the threshold and letting go triggers a refresh. The disc follows the
// finger and stays, turning, until the refresh that it started is over.
ContinuousRectangle {
    id: disc

    required property Flickable flickable
    required property bool busy
    signal triggered

    readonly property real threshold: 72
    readonly property real pull: Math.max(0, flickable.originY - flickable.contentY)
    readonly property bool armed: pull >= threshold
    property bool refreshing: false

    anchors.horizontalCenter: flickable.horizontalCenter
    y: refreshing ? 16 : Math.min(pull, threshold) - height
    width: 40
    height: 40
    radius: 20
    color: Theme.surface
    borderColor: Theme.divider
    borderWidth: 1
    opacity: refreshing ? 1 : Math.min(1, pull / threshold)
    visible: opacity > 0

    onBusyChanged: refreshing = refreshing && busy

    Spinner {
        anchors.centerIn: parent
        color: disc.armed || disc.refreshing ? Theme.brand : Theme.textMuted
        still: !disc.refreshing || Theme.reducedMotion
    }

    Connections {
        target: disc.flickable

        function onDraggingChanged(): void {
            if (!disc.flickable.dragging && disc.armed && !disc.refreshing) {
                disc.refreshing = true;
                disc.triggered();
            }
        }
    }
}
