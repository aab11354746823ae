import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// A hidden row like those of the history. Building it loads everything that history rows need.
HistoryRow {
    width: 350
    day: texts.sampleDay
    status: "ON_TIME"
    checkIn: "9:41"
    checkOut: ""
    summary: texts.sampleDay
    summaryColor: Theme.textMuted
    spoken: ""

    HistoryViewModel {
        id: texts
    }
}
