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
    property int selected: 0

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
            anchors.fill: parent
            selected: tabs.selected === 0

            Component {
                HomeView {
                    attendance: tabs.attendance
                    location: tabs.location
                    fullName: tabs.app.auth.fullName
                }
            }
        }
        TabPage {
            anchors.fill: parent
            selected: tabs.selected === 1

            Component {
                HistoryView {
                    attendance: tabs.attendance
                }
            }
        }
        TabPage {
            anchors.fill: parent
            selected: tabs.selected === 2

            Component {
                SummaryView {
                    attendance: tabs.attendance
                }
            }
        }
        TabPage {
            anchors.fill: parent
            selected: tabs.selected === 3

            Component {
                ProfileView {
                    auth: tabs.app.auth
                }
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
