import QtQuick
import Clockwell.Ui

// A symbol that is pressed; `label` is its name for assistive technology.
Pressable {
    id: root

    required property string symbol
    required property string label
    property real size: Math.round(22 * Theme.textScale)
    property color color: Theme.textSecondary

    implicitWidth: Theme.touchTarget
    implicitHeight: Theme.touchTarget

    Accessible.role: Accessible.Button
    Accessible.name: label

    Symbol {
        anchors.centerIn: parent
        name: root.symbol
        size: root.size
        color: root.color
        opacity: root.pressed || !root.enabled ? 0.5 : 1
    }

    FocusRing {
        objectName: "ring"
        shown: root.focusVisible
        gap: -4
    }
}
