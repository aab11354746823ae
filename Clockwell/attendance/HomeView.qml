import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// The first tab: the current day, with the button for the punch at the bottom, within reach of the thumb.
FocusScope {
    id: view

    required property AttendanceStore attendance
    required property LocationManager location
    required property string fullName
    // How long a banner is shown, in milliseconds.
    property alias bannerInterval: banner.interval

    readonly property real contentWidth: Math.min(width, 600) - 2 * Theme.margin

    HomeViewModel {
        id: home
        attendance: view.attendance
        location: view.location
        fullName: view.fullName
        shown: view.visible
    }

    ScreenBackground {}

    Flickable {
        id: page
        anchors {
            left: parent.left
            right: parent.right
            top: parent.top
            bottom: punchBar.top
        }
        clip: true
        contentHeight: column.height + column.y + 24
        pixelAligned: true
        flickableDirection: Flickable.VerticalFlick

        Column {
            id: column
            x: Math.round((page.width - width) / 2)
            y: 24
            width: view.contentWidth
            spacing: 16

            Column {
                width: parent.width
                bottomPadding: 8
                spacing: 4

                TextLabel {
                    width: parent.width
                    text: home.greeting
                    size: 26
                    weight: Font.Bold
                    color: Theme.white
                }
                TextLabel {
                    width: parent.width
                    text: home.dateLine
                    horizontalAlignment: Text.AlignLeft // also for right-to-left scripts, like the layout of the page
                    size: 14
                    color: Theme.textSecondary
                }
            }

            OfficeCard {
                home: home
            }
            TodayCard {
                home: home
            }
            GeofenceCard {
                home: home
            }
        }
    }

    PullToRefresh {
        flickable: page
        refreshing: home.refreshing
        onTriggered: home.refresh()
    }

    PunchBar {
        id: punchBar
        anchors {
            left: parent.left
            right: parent.right
            bottom: parent.bottom
        }
        contentWidth: view.contentWidth
        home: home
    }

    BannerView {
        id: banner
        width: view.contentWidth
        attendance: view.attendance
        shown: view.visible
    }
}
