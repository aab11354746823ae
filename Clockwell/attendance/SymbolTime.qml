import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// A time after the symbol that tells check-in from check-out. Read out by the row that it is in.
Item {
    id: root

    required property string symbol
    required property string text

    implicitWidth: label.x + label.implicitWidth
    implicitHeight: Math.max(icon.height, label.height)

    Symbol {
        id: icon
        y: Math.round((root.height - height) / 2)
        name: root.symbol
        size: Math.round(18 * Theme.textScale)
        color: Theme.textSecondary
    }
    TextLabel {
        id: label
        x: icon.width + 8
        y: Math.round((root.height - height) / 2)
        width: root.width - x
        text: root.text
        horizontalAlignment: Text.AlignLeft // next to its symbol, also for right-to-left scripts
        size: 14
        Accessible.ignored: true
    }
}
