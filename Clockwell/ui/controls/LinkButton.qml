import QtQuick
import Clockwell.Ui

// A text that is pressed: a link, unless `role` says otherwise. Drawn as small as its text, hit like every button.
Button {
    id: root

    required text
    property real size: 13
    property int weight: Font.Normal
    property color color: Theme.brand

    role: Accessible.Link
    cornerRadius: 4

    contentItem: TextLabel {
        text: root.text
        size: root.size
        weight: root.weight
        color: root.color
        opacity: root.pressed || !root.enabled ? 0.5 : 1
        horizontalAlignment: root.role === Accessible.Link ? Text.AlignLeft : Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
