import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// The title above the days; scrolls with them.
Item {
    id: root

    readonly property real center: title.y + title.height / 2

    width: parent?.width ?? 0
    height: title.y + title.height + 16

    TextLabel {
        id: title
        x: Math.round((root.width - width) / 2)
        y: 24
        width: Math.min(root.width, 600) - 2 * Theme.margin
        text: "History"
        size: 28
        weight: Font.Bold
        color: Theme.white
    }
}
