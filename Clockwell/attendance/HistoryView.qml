import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// The days, in the server's order.
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
        cacheBuffer: 160 // a row is built in a millisecond: more of them ahead cost every frame more than they save
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

    // The first row of all loads fonts, the locale's date formats and its own type: this one does so, unseen and piece
    // by piece between frames, while the first answer is on its way. Those of the list are quick then.
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
