import QtQuick
import Clockwell.Ui
import Clockwell.Account

// A button in the form of a row, for an action on the account.
Button {
    id: root

    required property string symbol
    required property string title
    property color color: Theme.textPrimary

    text: title
    implicitHeight: Math.max(48, label.height + 2 * 14)
    cornerRadius: 12

    background: ContinuousRectangle {
        radius: root.cornerRadius
        color: root.pressed ? Theme.surface : Theme.card
        borderColor: Theme.divider
        borderWidth: 1
    }

    Item {
        id: box
        x: 14
        width: Math.round(22 * Theme.textScale)
        height: parent.height

        Symbol {
            anchors.centerIn: parent
            name: root.symbol
            size: Math.round(18 * Theme.textScale)
            color: root.color
        }
    }

    TextLabel {
        id: label
        x: box.x + box.width + 12
        width: chevron.x - 8 - x
        anchors.verticalCenter: parent.verticalCenter
        size: 15
        weight: Font.Medium
        color: root.color
        text: root.title
        Accessible.ignored: true
    }

    Symbol {
        id: chevron
        x: root.width - 14 - width
        anchors.verticalCenter: parent.verticalCenter
        name: "chevron.right"
        size: Math.round(13 * Theme.textScale)
        color: Theme.textMuted
    }
}
