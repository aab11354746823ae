import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// Eight spokes that turn by one ten times a second, which costs few frames. They stand still, and cost none, while they are
// hidden or not `running`, and wherever the desktop asks for reduced motion.
T.BusyIndicator {
    id: control

    property real size: 20
    property color color: Theme.white
    property int step: 0

    implicitWidth: implicitContentWidth
    implicitHeight: implicitContentHeight
    Accessible.ignored: true // what is busy says so itself

    contentItem: Image {
        source: Theme.picture("Spinner", control.color)
        sourceSize.width: Math.round(control.size)
        sourceSize.height: Math.round(control.size)
        rotation: 45 * control.step
    }

    Timer {
        interval: 100
        repeat: true
        running: control.running && control.visible && !Theme.reducedMotion
        onTriggered: control.step = (control.step + 1) % 8
    }
}
