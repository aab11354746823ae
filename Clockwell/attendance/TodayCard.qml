import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

Card {
    id: card

    required property HomeViewModel home

    Column {
        width: parent.width
        spacing: 16

        Item {
            id: header

            readonly property bool stacked: badge.visible && caption.width + 12 + badge.implicitWidth > width

            width: parent.width
            // The badge is taller than the caption; its height is reserved before it is visible.
            height: stacked ? badge.y + badge.height : badge.implicitHeight

            TextLabel {
                id: caption
                y: header.stacked ? 0 : Math.round((badge.height - height) / 2)
                text: "TODAY"
                size: 10
                weight: Font.Medium
                font.letterSpacing: 0.6
                color: Theme.textMuted
            }
            StatusBadge {
                id: badge
                x: header.stacked ? 0 : header.width - width
                y: header.stacked ? caption.height + 8 : 0
                width: Math.min(implicitWidth, header.width)
                visible: card.home.hasRecord
                status: card.home.recordStatus
            }
        }

        Grid {
            id: grid

            // Three times side by side need about 70 points each at the normal text size, in some scripts more.
            readonly property real third: (width - 2 * columnSpacing) / 3
            readonly property real widest: Math.max(checkInColumn.narrowWidth, checkOutColumn.narrowWidth, workedColumn.narrowWidth)
            // Values may be scaled down by up to 5 %, which is not noticeable, so that the layout does not change at ten o'clock.
            readonly property bool stacked: width < 226 * Theme.textScale || widest > 1.05 * third
            readonly property real cell: stacked ? width : third

            readonly property real narrowSize: sizeIn(third)
            readonly property real valueSize: sizeIn(cell)
            readonly property real minValueHeight: stacked ? 0 : Math.max(checkInColumn.valueHeight, checkOutColumn.valueHeight, workedColumn.valueHeight)

            function sizeIn(space: real): real {
                return space < 88 * Theme.textScale ? 16 : 18;
            }

            width: parent.width
            columns: stacked ? 1 : 3
            columnSpacing: 8
            rowSpacing: 12

            TimeColumn {
                id: checkInColumn
                width: grid.cell
                wide: grid.stacked
                minValueHeight: grid.minValueHeight
                narrowSize: grid.narrowSize
                valueSize: grid.valueSize
                caption: "Check-in"
                value: card.home.checkInText
            }
            TimeColumn {
                id: checkOutColumn
                width: grid.cell
                wide: grid.stacked
                minValueHeight: grid.minValueHeight
                narrowSize: grid.narrowSize
                valueSize: grid.valueSize
                caption: "Check-out"
                value: card.home.checkOutText
            }
            TimeColumn {
                id: workedColumn
                width: grid.cell
                wide: grid.stacked
                minValueHeight: grid.minValueHeight
                narrowSize: grid.narrowSize
                valueSize: grid.valueSize
                caption: "Worked"
                value: card.home.workedText
            }
        }
    }
}
