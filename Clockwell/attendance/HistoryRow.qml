import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// One day of the history, read out in one go.
ReadAsOne {
    id: row

    required property string day
    required property string status
    required property string checkIn
    required property string checkOut
    required property string summary
    required property color summaryColor
    required property string spoken

    readonly property real space: ListView.view?.width ?? 0

    x: Math.round((space - width) / 2)
    width: Math.min(space, 600) - 2 * Theme.margin
    height: card.height

    // One that is kept for reuse still stands where it was: nobody is to read it there.
    ListView.onPooled: visible = false
    ListView.onReused: visible = true

    Accessible.role: Accessible.ListItem
    Accessible.name: spoken

    Card {
        id: card
        width: row.width
        height: implicitHeight

        Column {
            width: parent.width
            spacing: 12

            Item {
                id: header

                readonly property bool stacked: label.implicitWidth + 12 + badge.implicitWidth > width

                width: parent.width
                height: stacked ? badge.y + badge.height : Math.max(label.height, badge.height)

                TextLabel {
                    id: label
                    y: header.stacked ? 0 : Math.round((header.height - height) / 2)
                    width: header.stacked ? header.width : implicitWidth
                    text: row.day
                    horizontalAlignment: Text.AlignLeft // in every script, as the row is laid out
                    size: 15
                    weight: Font.DemiBold
                    color: Theme.white
                }
                StatusBadge {
                    id: badge
                    x: header.stacked ? 0 : header.width - width
                    y: header.stacked ? label.height + 8 : Math.round((header.height - height) / 2)
                    width: Math.min(implicitWidth, header.width)
                    height: implicitHeight
                    status: row.status
                }
            }

            Grid {
                id: times

                // Two times side by side need some 120 points each at the normal text size, in every row alike.
                readonly property bool stacked: width < 240 * Theme.textScale || entered.implicitWidth + 16 > width / 2 || left.implicitWidth > width / 2

                // Scripts differ in height, and a dash is of none: both stand on one line.
                readonly property real line: Math.max(entered.implicitHeight, left.implicitHeight)

                width: parent.width
                columns: stacked ? 1 : 2
                rowSpacing: 8

                SymbolTime {
                    id: entered
                    width: Math.round(times.width / times.columns)
                    height: times.line
                    symbol: "arrow.down.right.circle"
                    text: row.checkIn
                }
                SymbolTime {
                    id: left
                    width: Math.round(times.width / times.columns)
                    height: times.line
                    symbol: "arrow.up.right.circle"
                    text: row.checkOut
                }
            }

            TextLabel {
                width: parent.width
                visible: text.length > 0
                text: row.summary
                size: 12
                color: row.summaryColor
            }
        }
    }
}
