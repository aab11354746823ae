import QtQuick
import Clockwell.Ui

// A server status code as a coloured capsule.
Item {
    id: root

    required property string status
    readonly property color tint: Theme.statusColor(status)

    implicitWidth: label.x + label.implicitWidth + 11
    implicitHeight: label.implicitHeight + 2 * 4

    Accessible.role: Accessible.StaticText
    Accessible.name: label.text

    ContinuousRectangle {
        objectName: "capsule"
        anchors.fill: parent
        radius: height / 2
        color: root.tint
        opacity: 0.14
    }

    ContinuousRectangle {
        id: dot
        objectName: "dot"
        x: 11
        y: Math.round((root.height - height) / 2)
        width: Math.round(6 * Theme.textScale)
        height: width
        radius: width / 2
        color: root.tint
    }

    TextLabel {
        id: label
        objectName: "label"
        x: dot.x + dot.width + 6
        y: 4
        width: root.width - x - 11
        text: Theme.statusLabel(root.status)
        size: 11
        weight: Font.DemiBold
        monospaced: true
        color: root.tint
        wrapMode: Text.NoWrap
        Accessible.ignored: true
    }
}
