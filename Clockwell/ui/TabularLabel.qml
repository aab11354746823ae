pragma ComponentBehavior: Bound
import QtQuick
import Clockwell.Ui

// A short one-line text whose digits all take the same width, so that a number that changes does not jump. Qt 6.4 cannot
// select a font's tabular digits: each digit gets a cell of the widest one's width.
Row {
    id: root

    required property string text
    property real size: 17
    property int weight: Font.Normal
    property color color: Theme.textPrimary
    readonly property real digitWidth: Theme.digitWidth(probe.font)

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    TextLabel {
        id: probe
        size: root.size
        weight: root.weight
        visible: false
    }

    Repeater {
        model: root.text.length

        TextLabel {
            required property int index

            text: root.text.charAt(index)
            size: root.size
            weight: root.weight
            color: root.color
            width: text >= "0" && text <= "9" ? root.digitWidth : implicitWidth
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.NoWrap
            elide: Text.ElideNone
            Accessible.ignored: true
        }
    }
}
