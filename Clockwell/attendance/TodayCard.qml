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
            width: parent.width
            // The badge is the taller one: it has its place before it is there.
            height: Math.max(caption.height, badge.implicitHeight)

            TextLabel {
                id: caption
                anchors.verticalCenter: parent.verticalCenter
                text: "TODAY"
                size: 10
                weight: Font.Medium
                font.letterSpacing: 0.6
                color: Theme.textMuted
            }
            StatusBadge {
                id: badge
                anchors {
                    right: parent.right
                    verticalCenter: parent.verticalCenter
                }
                width: Math.min(implicitWidth, parent.width - caption.width - 12)
                visible: card.home.hasRecord
                status: card.home.recordStatus
            }
        }

        Grid {
            id: grid

            // Three times side by side need some 70 points each at the normal text size.
            readonly property bool stacked: width < 226 * Theme.textScale
            readonly property real cell: stacked ? width : (width - 2 * columnSpacing) / 3

            width: parent.width
            columns: stacked ? 1 : 3
            columnSpacing: 8
            rowSpacing: 12

            TimeColumn {
                width: grid.cell
                wide: grid.stacked
                caption: "Check-in"
                value: card.home.checkInText
            }
            TimeColumn {
                width: grid.cell
                wide: grid.stacked
                caption: "Check-out"
                value: card.home.checkOutText
            }
            TimeColumn {
                width: grid.cell
                wide: grid.stacked
                caption: "Worked"
                value: card.home.workedText
            }
        }
    }
}
