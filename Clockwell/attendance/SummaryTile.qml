import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// One counter of the month, with a placeholder before the first response. A single element for screen readers.
Item {
    id: tile

    required property string label
    required property string symbol
    required property color tint
    required property string count
    required property string spoken

    height: card.height

    Accessible.role: Accessible.StaticText
    Accessible.name: spoken

    Card {
        id: card
        width: tile.width
        height: implicitHeight

        Column {
            width: parent.width
            spacing: 8

            Symbol {
                name: tile.symbol
                size: Math.round(22 * Theme.textScale)
                color: tile.tint
                opacity: tile.count.length > 0 ? 1 : 0.4
            }
            CountOrPlaceholder {
                width: parent.width
                text: tile.count
                size: 28
            }
            TextLabel {
                width: parent.width
                text: tile.label
                size: 13
                color: Theme.textSecondary
                Accessible.ignored: true
            }
        }
    }
}
