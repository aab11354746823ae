import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// A caption with its value below it, or at the other end of the line if `wide` is set and both fit. A value that is
// still too wide is scaled down.
Item {
    id: root

    required property string caption
    required property string value
    required property real valueSize
    property bool wide: false
    // The height of the tallest value in the row: scripts differ in line height, and all values have to be aligned.
    property real minValueHeight: valueHeight
    readonly property real valueHeight: number.implicitHeight
    // Font size for which narrowWidth, the width of the value, is computed.
    property real narrowSize: valueSize
    readonly property real narrowWidth: Theme.tabularWidth(value, narrow.font)

    readonly property bool beside: wide && label.implicitWidth + 8 + number.implicitWidth <= width

    height: beside ? Math.max(label.height, number.height) : label.height + 4 + Math.max(minValueHeight, number.height)

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
