import QtQuick
import Clockwell.Ui

// One answer in an alert or a dialog, as wide as it.
Button {
    id: root

    required property string title
    property color color: Theme.brand
    property int weight: Font.Normal

    text: title
    implicitWidth: parent?.width ?? 0
    implicitHeight: Math.max(50, implicitContentHeight + 2 * 14)
    horizontalPadding: 16
    topPadding: Math.floor((height - implicitContentHeight) / 2)
    cornerRadius: 10
    ringGap: -6

    contentItem: TextLabel {
        horizontalAlignment: Text.AlignHCenter
        weight: root.weight
        color: root.color
        text: root.title
        opacity: root.pressed ? 0.5 : 1
        Accessible.ignored: true
    }
}
