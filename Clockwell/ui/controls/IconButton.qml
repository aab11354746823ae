import QtQuick
import Clockwell.Ui

// A symbol that is pressed; `label` is its name for assistive technology.
Button {
    id: root

    required property string symbol
    required property string label
    property real size: Math.round(22 * Theme.textScale)
    property color color: Theme.textSecondary

    text: label
    implicitWidth: Theme.touchTarget
    implicitHeight: Theme.touchTarget
    ringGap: -4

    Symbol {
        anchors.centerIn: parent
        name: root.symbol
        size: root.size
        color: root.color
        opacity: root.pressed || !root.enabled ? 0.5 : 1
    }
}
