import QtQuick
import Clockwell.Ui

// One entry of an EditMenu. The keyboard goes through the entries while the field keeps the focus: `current` says where
// it is.
Pressable {
    id: root

    required property string title
    property bool current: false
    property bool separated: false
    property bool stacked: false

    implicitWidth: Math.max(Theme.touchTarget, Math.ceil(label.implicitWidth) + 2 * 16)
    implicitHeight: Math.max(Theme.touchTarget, Math.ceil(label.implicitHeight) + 2 * 10)
    activeFocusOnTab: false

    Accessible.role: Accessible.MenuItem
    Accessible.name: title
    Accessible.focused: current

    Rectangle {
        objectName: "separator"
        visible: root.separated
        x: root.stacked ? 1 : 0
        y: root.stacked ? 0 : 1
        width: root.stacked ? root.width - 2 : 1
        height: root.stacked ? 1 : root.height - 2
        color: Theme.divider
    }

    TextLabel {
        id: label
        objectName: "label"
        anchors.centerIn: parent
        size: 15
        weight: Font.Medium
        wrapMode: Text.NoWrap
        text: root.title
        opacity: root.pressed ? 0.5 : 1
        Accessible.ignored: true
    }

    FocusRing {
        objectName: "ring"
        shown: root.current
        cornerRadius: 12
        gap: -6
    }
}
