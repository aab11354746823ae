import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

FocusScope {
    id: view

    required property AttendanceStore attendance

    ScreenBackground {}

    TextLabel {
        x: Theme.margin
        y: 24
        width: view.width - 2 * x
        text: "Summary"
        size: 28
        weight: Font.Bold
    }
}
