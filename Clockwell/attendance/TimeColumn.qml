import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// A caption and its value: the value below, or at the other end of the line where the column has the whole width.
Item {
    id: root

    required property string caption
    required property string value
    required property real valueSize
    property bool wide: false

    height: wide ? Math.max(label.height, number.height) : number.y + number.height

    TextLabel {
        id: label
        width: root.wide ? root.width - number.width - 8 : root.width
        anchors.verticalCenter: root.wide ? number.verticalCenter : undefined
        text: root.caption
        size: 12
        color: Theme.textSecondary
        maximumLineCount: 1
    }

    TabularLabel {
        id: number
        x: root.wide ? root.width - width : 0
        y: root.wide ? 0 : label.height + 4
        text: root.value
        size: root.valueSize
        weight: Font.DemiBold
    }
}
