import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// The month's worked time; a single element for screen readers.
Item {
    id: root

    required property string total
    required property string spoken

    height: card.height

    Accessible.role: Accessible.StaticText
    Accessible.name: spoken

    Card {
        id: card
        width: root.width
        height: implicitHeight

        Column {
            width: parent.width
            spacing: 8

            TextLabel {
                width: parent.width
                text: "TOTAL WORKED"
                size: 10
                weight: Font.Medium
                font.letterSpacing: 0.6
                color: Theme.textMuted
                Accessible.ignored: true
            }
            CountOrPlaceholder {
                width: parent.width
                text: root.total
                size: 34
                placeholderWidth: 144 * Theme.textScale
            }
            TextLabel {
                width: parent.width
                text: "this month"
                size: 13
                color: Theme.textSecondary
                Accessible.ignored: true
            }
        }
    }
}
