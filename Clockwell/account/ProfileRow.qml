import QtQuick
import Clockwell.Ui
import Clockwell.Account

// One fact about the account: what it is at the left, its value at the right; one below the other where they do not fit.
Item {
    id: root

    required property string label
    required property string value
    readonly property real padding: 12
    readonly property bool stacked: heading.implicitWidth + fact.implicitWidth + 3 * padding > width

    implicitHeight: fact.y + fact.height + padding

    Accessible.role: Accessible.StaticText
    Accessible.name: label + ", " + value

    TextLabel {
        id: heading
        x: root.padding
        y: root.padding
        width: root.width - 2 * x
        size: 14
        color: Theme.textSecondary
        text: root.label
        Accessible.ignored: true
    }

    TextLabel {
        id: fact
        x: root.padding
        y: root.stacked ? heading.y + heading.height + 2 : root.padding
        width: root.width - 2 * x
        size: 14
        weight: Font.Medium
        horizontalAlignment: root.stacked ? Text.AlignLeft : Text.AlignRight
        text: root.value
        Accessible.ignored: true
    }
}
