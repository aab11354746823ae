import QtQuick
import Clockwell.Ui
import Clockwell.Account

// A labeled value of the account: label on the left, value on the right; one below the other if they do not fit.
Item {
    id: root

    required property string label
    required property string value
    required property string spoken
    readonly property real padding: 12
    readonly property bool stacked: heading.implicitWidth + valueLabel.implicitWidth + 3 * padding > width

    implicitHeight: valueLabel.y + valueLabel.height + padding

    Accessible.role: Accessible.StaticText
    Accessible.name: spoken

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
        id: valueLabel
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
