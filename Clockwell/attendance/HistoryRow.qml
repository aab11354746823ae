import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// One day of the history; a single element for screen readers.
Item {
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

    // A pooled row keeps its old position; screen readers must not find it there.
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
                    horizontalAlignment: Text.AlignLeft // also for right-to-left scripts, like the layout of the row
                    size: 15
                    weight: Font.DemiBold
                    color: Theme.white
                    Accessible.ignored: true
                }
                StatusBadge {
                    id: badge
                    x: header.stacked ? 0 : header.width - width
                    y: header.stacked ? label.height + 8 : Math.round((header.height - height) / 2)
                    width: Math.min(implicitWidth, header.width)
                    height: implicitHeight
                    status: row.status
                    Accessible.ignored: true
                }
            }

            Grid {
                id: times

                // Two times side by side need about 120 points each at the normal text size; the same limit in every row.
                readonly property bool stacked: width < 240 * Theme.textScale || checkInTime.implicitWidth + 16 > width / 2 || checkOutTime.implicitWidth > width / 2

                // Scripts differ in line height, and a dash belongs to none: aligns both texts vertically.
                readonly property real lineHeight: Math.max(checkInTime.implicitHeight, checkOutTime.implicitHeight)

                width: parent.width
                columns: stacked ? 1 : 2
                rowSpacing: 8

                SymbolTime {
                    id: checkInTime
                    width: Math.round(times.width / times.columns)
                    height: times.lineHeight
                    symbol: "arrow.down.right.circle"
                    text: row.checkIn
                }
                SymbolTime {
                    id: checkOutTime
                    width: Math.round(times.width / times.columns)
                    height: times.lineHeight
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
                Accessible.ignored: true
            }
        }
    }
}
