import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

Card {
    id: card

    required property HomeViewModel home

    Column {
        width: parent.width
        bottomPadding: -10 // the button has padding of its own
        spacing: 8

        Item {
            id: row

            readonly property bool stacked: 42 + distance.width + 12 + pill.width > width
            // Reserves the height of the distance while there is none.
            readonly property real lineHeight: Math.max(icon.height, numberLine.height)

            width: parent.width
            height: stacked && pill.visible ? pill.y + pill.height : lineHeight

            TextLabel {
                id: numberLine
                size: 22
                visible: false
            }

            Symbol {
                id: icon
                y: Math.round((row.lineHeight - height) / 2)
                name: card.home.geofenceSymbol
                size: 30
                color: card.home.geofenceColor
            }
            TabularLabel {
                id: distance
                x: 42
                y: Math.round((row.lineHeight - height) / 2)
                text: card.home.distanceText
                size: 22
                weight: Font.Bold
                color: Theme.white
                visible: card.home.located
            }
            TextLabel {
                anchors.verticalCenter: icon.verticalCenter
                x: 42
                width: parent.width - x
                text: card.home.locatingText
                size: 12
                color: Theme.textSecondary
                visible: !card.home.located
            }
            ContinuousRectangle {
                id: pill
                x: row.stacked ? distance.x : row.width - width
                y: row.stacked ? row.lineHeight + 8 : Math.round((row.lineHeight - height) / 2)
                width: pillText.implicitWidth + 24
                height: pillText.height + 8
                radius: height / 2
                color: card.home.geofenceColor
                visible: card.home.located

                TextLabel {
                    id: pillText
                    anchors.centerIn: parent
                    text: card.home.insideText
                    size: 11
                    weight: Font.DemiBold
                    color: Theme.white
                    wrapMode: Text.NoWrap
                }
            }
        }

        // Reserves its line before the first response too, unless the hint replaces it.
        TextLabel {
            width: parent.width
            text: card.home.nearestLine
            size: 12
            color: Theme.textSecondary
            visible: text !== "" || card.home.hint === ""
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

        TextLabel {
            width: parent.width
            text: card.home.hint
            size: 12
            color: Theme.danger
            visible: text !== ""
        }

        Item {
            width: parent.width
            height: 9

            Rectangle {
                y: 8
                width: parent.width
                height: 1
                color: Theme.divider
            }
        }

        LocationButton {
            width: parent.width
            text: "Refresh my location"
            busy: card.home.checkingDistance
            onClicked: card.home.refreshLocation()
        }
    }
}
