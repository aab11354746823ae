import QtQuick
import Clockwell.Ui

// One answer in an alert or a dialog, as wide as it.
Pressable {
    id: root

    required property string title
    property color color: Theme.brand
    property int weight: Font.Normal

    implicitWidth: parent?.width ?? 0
    implicitHeight: Math.max(50, label.height + 2 * 14)

    Accessible.role: Accessible.Button
    Accessible.name: title

    TextLabel {
        id: label
        anchors.verticalCenter: parent.verticalCenter
        x: 16
        width: root.width - 2 * x
        horizontalAlignment: Text.AlignHCenter
        weight: root.weight
        color: root.color
        text: root.title
        opacity: root.pressed ? 0.5 : 1
        Accessible.ignored: true
    }

    FocusRing {
        objectName: "ring"
        shown: root.focusVisible
        cornerRadius: 10
        gap: -6
    }
}
