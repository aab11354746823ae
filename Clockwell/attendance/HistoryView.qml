import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// The history's days, in the server's order.
FocusScope {
    id: view

    required property AttendanceStore attendance

    readonly property real contentWidth: Math.min(width, 600) - 2 * Theme.margin
    readonly property real contentX: Math.round((width - contentWidth) / 2)

    HistoryViewModel {
        id: history
        attendance: view.attendance
        shown: view.visible
    }

    ScreenBackground {}

    ListView {
        id: list
        objectName: "days"
        anchors.fill: parent
        clip: true
        focus: true
        model: sample.status === Loader.Ready ? history.days : null
        reuseItems: true
        cacheBuffer: 160 // building a row takes a millisecond; a larger buffer costs more in every frame than it saves
        spacing: 10
        bottomMargin: 24
        pixelAligned: true
        keyNavigationEnabled: false
        activeFocusOnTab: true
        Keys.onDownPressed: flick(0, -900)
        Keys.onUpPressed: flick(0, 900)

        Accessible.role: Accessible.List
        Accessible.name: "History"

        header: HistoryTitle {}
        delegate: HistoryRow {}
    }

    // Building the first row is slow, because it loads fonts, the locale's date formats and the row's type. This hidden
    // row loads them between frames while the first request is running, so that the rows of the list are built quickly.
    Loader {
        id: sample
        asynchronous: true
        visible: false
        source: "HistorySample.qml"
    }

    Column {
        x: view.contentX
        y: Math.round((view.height - height) / 2 + pull.pull)
        width: view.contentWidth
        visible: history.empty
        spacing: 12

        Symbol {
            x: Math.round((parent.width - width) / 2)
            name: "calendar.badge.clock"
            size: Math.round(34 * Theme.textScale)
            color: Theme.textMuted
        }
        TextLabel {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: "No attendance records yet"
            color: Theme.textSecondary
        }
    }

    PullToRefresh {
        id: pull
        objectName: "pull"
        flickable: list
        refreshing: history.refreshing
        loading: history.loading && !history.refreshing
        asideCenter: (list.headerItem as HistoryTitle)?.center ?? 0
        onTriggered: history.refresh()
    }
}
