import QtQuick
import Clockwell.Ui

// A pushed screen with its title bar, and the tab bar.
Rectangle {
    width: 390
    height: 320
    color: Theme.background

    NavigationPage {
        width: parent.width
        height: 240
        title: "Reset password"

        Card {
            x: 20
            y: 8
            width: parent.width - 40
            TextLabel { width: parent.width; text: "Content" }
        }
    }

    Rectangle {
        y: 250
        width: parent.width
        height: 70
        color: Theme.card

        Row {
            anchors.centerIn: parent
            TabBarButton { width: 96; title: "Attendance"; symbol: "location.fill.viewfinder"; checked: true }
            TabBarButton { width: 96; title: "History"; symbol: "calendar" }
            TabBarButton { objectName: "ring"; width: 96; title: "Summary"; symbol: "chart.bar.fill" }
            TabBarButton { width: 96; title: "Profile"; symbol: "person.crop.circle" }
        }
    }
}
