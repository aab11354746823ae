pragma ComponentBehavior: Bound

import QtQuick
import Clockwell
import Clockwell.Account
import Clockwell.Attendance
import Clockwell.Ui

// The interface after sign-in. Owns the attendance store and the location manager of the session.
Item {
    id: tabs

    required property ClockwellApp app
    readonly property AttendanceStore attendance: app.newAttendanceStore(tabs)
    readonly property LocationManager location: app.newLocationManager(tabs)

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

        TabPage {
            selected: bar.currentIndex === 0

            HomeView {
                anchors.fill: parent
                focus: true
                attendance: tabs.attendance
                location: tabs.location
                fullName: tabs.app.auth.fullName
            }
        }
        TabPage {
            selected: bar.currentIndex === 1

            HistoryView {
                anchors.fill: parent
                focus: true
                attendance: tabs.attendance
            }
        }
        TabPage {
            selected: bar.currentIndex === 2

            SummaryView {
                anchors.fill: parent
                focus: true
                attendance: tabs.attendance
            }
        }
        TabPage {
            selected: bar.currentIndex === 3

            ProfileView {
                anchors.fill: parent
                focus: true
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
    }
}
