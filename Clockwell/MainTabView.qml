import QtQuick
import Clockwell
import Clockwell.Account
import Clockwell.Attendance
import Clockwell.Ui

// The signed-in interface. It owns the attendance store of this signed-in stretch.
Item {
    id: tabs

    required property ClockwellApp app
    readonly property AttendanceStore attendance: app.newAttendanceStore(tabs)
    readonly property LocationManager location: app.newLocationManager(tabs)
    property int selected: 0
    // One bit a tab. A tab is built on its first visit; once built it is hidden and shown.
    property int visited: 1

    onSelectedChanged: visited |= 1 << selected

    ScreenBackground {
        anchors.fill: parent
    }

    Item {
        anchors {
            left: parent.left
            right: parent.right
            top: parent.top
            bottom: bar.top
        }

        Loader {
            anchors.fill: parent
            active: tabs.visited & 1
            visible: tabs.selected === 0
            focus: visible
            sourceComponent: HomeView {
                attendance: tabs.attendance
                location: tabs.location
                fullName: tabs.app.auth.fullName
            }
        }
        Loader {
            anchors.fill: parent
            active: tabs.visited & 2
            visible: tabs.selected === 1
            focus: visible
            sourceComponent: HistoryView {
                attendance: tabs.attendance
            }
        }
        Loader {
            anchors.fill: parent
            active: tabs.visited & 4
            visible: tabs.selected === 2
            focus: visible
            sourceComponent: SummaryView {
                attendance: tabs.attendance
            }
        }
        Loader {
            anchors.fill: parent
            active: tabs.visited & 8
            visible: tabs.selected === 3
            focus: visible
            sourceComponent: ProfileView {
                auth: tabs.app.auth
            }
        }
    }

    MainTabBar {
        id: bar
        anchors {
            left: parent.left
            right: parent.right
            bottom: parent.bottom
        }
        selected: tabs.selected
        onSelect: index => tabs.selected = index
    }
}
