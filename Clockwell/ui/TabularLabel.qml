pragma ComponentBehavior: Bound
import QtQuick
import Clockwell.Ui

// A short one-line text whose digits all take the same width, so that a number that changes does not jump. Qt 6.4 cannot
// select a font's tabular digits: each digit gets a cell of the widest one's width, unless the script forbids it.
Row {
    id: root

    required property string text
    property real size: 17
    property int weight: Font.Normal
    property color color: Theme.textPrimary
    readonly property real digitWidth: Theme.digitWidth(probe.font)
    readonly property var cells: Theme.tabularCells(text)

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    TextLabel {
        id: probe
        size: root.size
        weight: root.weight
        visible: false
    }

    Repeater {
        model: root.cells.length

        TextLabel {
            required property int index
            readonly property bool isDigit: text.length === 1 && text >= "0" && text <= "9"

            text: root.cells[index] ?? ""
            size: root.size
            weight: root.weight
            color: root.color
            width: isDigit ? root.digitWidth : undefined
            horizontalAlignment: isDigit ? Text.AlignHCenter : Text.AlignLeft
            wrapMode: Text.NoWrap
            elide: Text.ElideNone
            Accessible.ignored: true
        }
    }
}
