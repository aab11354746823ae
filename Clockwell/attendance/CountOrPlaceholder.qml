import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// A number in digits of equal width, scaled down where it does not fit. A placeholder bar while the text is empty.
// Read out by the card that it is in.
Item {
    id: root

    required property string text
    required property real size
    property real placeholderWidth: 1.5 * size * Theme.textScale

    height: Math.round(probe.height)

    TextLabel {
        id: probe
        visible: false
        text: "0"
        size: root.size
        weight: Font.Bold
    }
    TabularLabel {
        id: number
        y: Math.round((root.height - height * scale) / 2)
        transformOrigin: Item.TopLeft
        scale: Math.min(1, root.width / Math.max(1, implicitWidth))
        visible: root.text.length > 0
        text: root.text
        size: root.size
        weight: Font.Bold
        color: Theme.white
        Accessible.ignored: true
    }
    ContinuousRectangle {
        y: Math.round((root.height - height) / 2)
        width: Math.round(Math.min(root.width, root.placeholderWidth))
        height: Math.round(root.size * Theme.textScale * 0.6)
        radius: 4
        color: Theme.surface
        visible: root.text.length === 0
    }
}
