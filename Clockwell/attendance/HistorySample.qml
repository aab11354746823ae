import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// A row like those of the history, for nobody to see: with it all is loaded that rows need.
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
