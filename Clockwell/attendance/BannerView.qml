import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// The store's banner, at the top of its parent. It slides in and is announced, also when it replaces another banner.
ContinuousRectangle {
    id: view

    required property AttendanceStore attendance
    // Whether the screen is in front; the banner's timer runs only then.
    required property bool shown
    property alias interval: model.interval
    // True for a moment when a banner appears: assistive technology announces an alert when it becomes visible, and a
    // banner that replaces another has to be announced as well.
    property bool hiddenForAnnouncement: false

    anchors.horizontalCenter: parent.horizontalCenter
    height: Math.max(text.height + 2 * 16, 52)
    y: 12
    radius: 14
    color: Theme.surface
    borderColor: model.color
    borderWidth: 1
    visible: (model.present || leaving.running) && !hiddenForAnnouncement

    Accessible.role: Accessible.AlertMessage
    Accessible.name: text.text

    BannerViewModel {
        id: model
        attendance: view.attendance
        shown: view.shown
        onAppeared: arriving.restart()
        onPresentChanged: leaving.running = !present
    }

    SequentialAnimation {
        id: arriving
        PropertyAction {
            target: view
            property: "hiddenForAnnouncement"
            value: true
        }
        PropertyAction {
            target: view
            property: "hiddenForAnnouncement"
            value: false
        }
        NumberAnimation {
            target: slide
            property: "y"
            from: -view.height - view.y
            to: 0
            duration: Theme.duration
            easing.type: Easing.OutCubic
        }
    }
    NumberAnimation {
        id: leaving
        target: slide
        property: "y"
        to: -view.height - view.y
        duration: Theme.duration
        easing.type: Easing.InCubic
    }
    transform: Translate {
        id: slide
    }

    Symbol {
        id: icon
        x: 16
        anchors.verticalCenter: parent.verticalCenter
        name: model.symbol
        size: Math.round(22 * Theme.textScale)
        color: model.color
    }
    TextLabel {
        id: text
        anchors {
            left: icon.right
            leftMargin: 12
            right: close.left
            verticalCenter: parent.verticalCenter
        }
        text: model.text
        size: 14
        weight: Font.Medium
        color: Theme.white
        Accessible.ignored: true
    }
    IconButton {
        id: close
        anchors {
            right: parent.right
            rightMargin: 4
            verticalCenter: parent.verticalCenter
        }
        symbol: "xmark"
        label: "Close"
        size: Math.round(16 * Theme.textScale)
        color: Theme.white
        opacity: 0.8
        onClicked: model.dismiss()
    }
}
