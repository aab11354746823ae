import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// A screen of its own that slides up over the present one, built when it opens and destroyed when it has closed: nearly
// all of a phone, a form in the middle of a tablet. It is pulled down by a finger, as every Drawer.
T.Drawer {
    id: root

    property bool shown: false
    required property string title
    required property Component content

    // Closes, not by its owner.
    signal rejected

    readonly property bool wide: width >= 600
    readonly property real gap: 20

    edge: Qt.BottomEdge
    dragMargin: 0
    width: parent?.width ?? 0 // beside a narrower one, Qt would dim and guard nothing
    height: (parent?.height ?? 0) - Math.max(gap, bottomPadding)
    leftPadding: wide ? Math.round((width - 540) / 2) : 0
    rightPadding: leftPadding
    bottomPadding: wide ? Math.round(Math.max(gap, ((parent?.height ?? 0) - 620) / 2)) : 0
    leftInset: leftPadding
    rightInset: leftPadding
    bottomInset: wide ? bottomPadding : -40 // the lower corners are not to be seen
    modal: true
    focus: true
    interactive: opened
    closePolicy: opened ? T.Popup.CloseOnReleaseOutside : T.Popup.NoAutoClose
    onAboutToHide: if (shown)
        rejected()

    T.Overlay.modal: Rectangle {
        color: Theme.dim
    }

    enter: Transition {
        Motion {}
        SecondTap {}
    }
    exit: Transition {
        Motion {}
    }

    background: Panel {
        color: Theme.background
    }

    DialogContent {
        popup: root
        shown: root.shown
        title: root.title
        onBack: root.close()
        Component.onCompleted: popupItem.containmentMask = root.background

        // Qt 6.4's Loader cannot build a component that is bound to the file it is written in.
        FocusScope {
            id: holder
            anchors.fill: parent
            focus: true

            Repeater {
                model: root.visible ? 1 : 0
                delegate: root.content
                onItemAdded: (index, item) => {
                    item.anchors.fill = holder;
                    item.focus = true;
                }
            }
        }

        // Qt 6.4's Drawer opens again when it is let go in the first 0.3 of its way, however fast, and stays where the finger
        // was taken from it.
        PointHandler {
            id: finger

            property real flickTime: 0 // of the last fast move, in milliseconds
            property bool flicked: false

            onPointChanged: {
                flicked = !active && Date.now() - flickTime < 100; // let go, where one taken away changes no point
                if (active)
                    flickTime = point.velocity.y > 600 && root.position < 1 ? Date.now() : 0;
            }
            onActiveChanged: if (!active)
                letGo.start()
        }

        Timer {
            id: letGo
            interval: 0
            onTriggered: {
                if (finger.flicked)
                    root.close();
                else if (root.opened && root.position < 1)
                    spring.restart();
                finger.flickTime = 0;
            }
        }

        Motion {
            id: spring
            target: root
            property: "position"
            to: 1
        }
    }
}
