pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Ui

// The bar with the four tabs.
Rectangle {
    id: bar

    required property int selected
    signal select(index: int)

    implicitHeight: row.height
    color: Theme.card
    Accessible.role: Accessible.PageTabList
    Accessible.name: "Tabs"

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.divider
    }

    Row {
        id: row

        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width, 560)

        Repeater {
            model: [
                {title: "Attendance", symbol: "location.fill.viewfinder"},
                {title: "History", symbol: "calendar"},
                {title: "Summary", symbol: "chart.bar.fill"},
                {title: "Profile", symbol: "person.crop.circle"}
            ]

            TabBarButton {
                required property int index
                required property var modelData

                width: row.width / 4
                title: modelData.title
                symbol: modelData.symbol
                selected: bar.selected === index
                onTriggered: bar.select(index)
            }
        }
    }
}
