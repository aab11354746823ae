import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// A caption and its value: the value below, or at the other end of the line where the column has the whole width and
// both fit. A value that is too wide all the same is drawn smaller.
Item {
    id: root

    required property string caption
    required property string value
    required property real valueSize
    property bool wide: false
    // Of the tallest value of its row: scripts differ in height, and all stand on one line.
    property real line: valueHeight
    readonly property real valueHeight: number.implicitHeight
    // The room that the value needs at that size.
    property real narrowSize: valueSize
    readonly property real narrowWidth: Theme.tabularWidth(value, narrow.font)

    readonly property bool beside: wide && label.implicitWidth + 8 + number.implicitWidth <= width

    height: beside ? Math.max(label.height, number.height) : label.height + 4 + Math.max(line, number.height)

    TextLabel {
        id: narrow
        visible: false
        text: root.value
        size: root.narrowSize
        weight: Font.DemiBold
        wrapMode: Text.NoWrap
    }

    TextLabel {
        id: label
        y: root.beside ? Math.round((root.height - height) / 2) : 0
        width: root.beside ? root.width - number.width - 8 : root.width
        text: root.caption
        size: 12
        color: Theme.textSecondary
        maximumLineCount: 1
    }

    TabularLabel {
        id: number
        x: root.beside ? root.width - width : 0
        y: root.beside ? Math.round((root.height - height) / 2) : label.height + 4 + Math.round((root.height - label.height - 4 - height) / 2)
        transformOrigin: Item.Left
        scale: Math.min(1, root.width / Math.max(1, implicitWidth))
        text: root.value
        size: root.valueSize
        weight: Font.DemiBold
    }
}
