import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// A time behind the symbol that says which one it is.
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
        horizontalAlignment: Text.AlignLeft // in every script: beside its symbol
        size: 14
    }
}
