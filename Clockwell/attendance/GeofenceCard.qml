import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

Card {
    id: card

    required property HomeViewModel home

    Column {
        width: parent.width
        spacing: 8

        Item {
            id: row

            readonly property bool stacked: 42 + distance.width + 12 + pill.width > width

            width: parent.width
            height: stacked ? pill.y + pill.height : Math.max(icon.height, distance.height)

            Symbol {
                id: icon
                anchors.verticalCenter: distance.verticalCenter
                name: card.home.geofenceSymbol
                size: 30
                color: card.home.geofenceColor
            }
            TabularLabel {
                id: distance
                x: 42
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
                y: row.stacked ? distance.height + 8 : distance.y + (distance.height - height) / 2
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

        // Holds its line before the first answer too.
        TextLabel {
            width: parent.width
            text: card.home.nearestLine
            size: 12
            color: Theme.textSecondary
            Accessible.ignored: text === ""
        }

        TextLabel {
            width: parent.width
            text: card.home.hint
            size: 12
            color: Theme.danger
            visible: text !== ""
        }

        Rectangle {
            width: parent.width
            height: 1
            color: Theme.divider
        }

        LocationButton {
            width: parent.width
            text: "Refresh my location"
            busy: card.home.checkingDistance
            onTriggered: card.home.refreshLocation()
        }
    }
}
