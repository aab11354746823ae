import QtQuick
import Clockwell.Ui

// A text that leads somewhere. Drawn as small as its text, hit like every control.
Pressable {
    id: root

    required property string text
    property real size: 13
    property int weight: Font.Normal
    property color color: Theme.brand

    implicitWidth: label.implicitWidth
    implicitHeight: label.height

    Accessible.role: Accessible.Link
    Accessible.name: text

    TextLabel {
        id: label
        width: root.width
        text: root.text
        size: root.size
        weight: root.weight
        color: root.color
        opacity: root.pressed ? 0.5 : root.enabled ? 1 : 0.5
        Accessible.ignored: true
    }

    FocusRing {
        objectName: "ring"
        shown: root.focusVisible
        cornerRadius: 4
    }
}
