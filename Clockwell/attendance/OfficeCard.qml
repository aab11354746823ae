import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

Card {
    id: card

    required property HomeViewModel home

    Item {
        width: parent.width
        height: Math.max(tile.height, texts.height)

        ContinuousRectangle {
            id: tile
            width: 44
            height: 44
            radius: 12
            color: Theme.surface

            Symbol {
                anchors.centerIn: parent
                name: "building.2.fill"
                size: 22
                color: Theme.brand
            }
        }

        Column {
            id: texts
            anchors {
                left: tile.right
                leftMargin: 14
                right: parent.right
            }
            spacing: 4

            TextLabel {
                width: parent.width
                text: "OFFICE"
                size: 10
                weight: Font.Medium
                font.letterSpacing: 0.6
                color: Theme.textMuted
            }
            TextLabel {
                width: parent.width
                text: card.home.officeName
                size: 16
                weight: Font.DemiBold
                color: Theme.white
                maximumLineCount: 4
            }
            // Reserves its line before the first response too, so that nothing moves when it arrives.
            TextLabel {
                width: parent.width
                text: card.home.hoursLine
                size: 12
                color: Theme.textSecondary
                Accessible.ignored: text === ""

                ContinuousRectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.min(parent.width, 180)
                    height: 8
                    radius: 4
                    color: Theme.surface
                    visible: parent.text === ""
                }
            }
        }
    }
}
