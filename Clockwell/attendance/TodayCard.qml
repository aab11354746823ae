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
            // The badge is the taller one: it has its place before it is there.
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

            // Three times side by side need some 70 points each at the normal text size, in some scripts more.
            readonly property real third: (width - 2 * columnSpacing) / 3
            readonly property real widest: Math.max(entered.narrowWidth, left.narrowWidth, worked.narrowWidth)
            // Nobody sees a time that is drawn a twentieth smaller: that rather than another layout at ten o'clock.
            readonly property bool stacked: width < 226 * Theme.textScale || widest > 1.05 * third
            readonly property real cell: stacked ? width : third

            readonly property real narrowSize: sizeIn(third)
            readonly property real valueSize: sizeIn(cell)
            readonly property real line: stacked ? 0 : Math.max(entered.valueHeight, left.valueHeight, worked.valueHeight)

            function sizeIn(space: real): real {
                return space < 88 * Theme.textScale ? 16 : 18;
            }

            width: parent.width
            columns: stacked ? 1 : 3
            columnSpacing: 8
            rowSpacing: 12

            TimeColumn {
                id: entered
                width: grid.cell
                wide: grid.stacked
                line: grid.line
                narrowSize: grid.narrowSize
                valueSize: grid.valueSize
                caption: "Check-in"
                value: card.home.checkInText
            }
            TimeColumn {
                id: left
                width: grid.cell
                wide: grid.stacked
                line: grid.line
                narrowSize: grid.narrowSize
                valueSize: grid.valueSize
                caption: "Check-out"
                value: card.home.checkOutText
            }
            TimeColumn {
                id: worked
                width: grid.cell
                wide: grid.stacked
                line: grid.line
                narrowSize: grid.narrowSize
                valueSize: grid.valueSize
                caption: "Worked"
                value: card.home.workedText
            }
        }
    }
}
