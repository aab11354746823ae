import QtQuick
import Clockwell.Ui

// One tab of the tab bar.
Pressable {
    id: root

    required property string title
    required property string symbol
    property bool selected: false
    readonly property color tint: selected ? Theme.brand : Theme.textMuted

    implicitWidth: 96
    implicitHeight: Math.max(49, content.height + 10)

    Accessible.role: Accessible.PageTab
    Accessible.name: title
    Accessible.selectable: true
    Accessible.selected: selected

    Column {
        id: content
        anchors.centerIn: parent
        width: parent.width - 4
        spacing: 2

        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: root.symbol
            size: 24 * Math.min(Theme.textScale, 1.5)
            color: root.tint
        }

        TextLabel {
            width: parent.width
            objectName: "label"
            text: root.title
            size: 10
            weight: Font.Medium
            color: root.tint
            horizontalAlignment: Text.AlignHCenter
            maximumLineCount: 1
            fontSizeMode: Text.HorizontalFit // four tabs share the width: large text grows as far as it fits
            minimumPixelSize: 10
            Accessible.ignored: true
        }
    }

    FocusRing {
        objectName: "ring"
        shown: root.focusVisible
        gap: -4
    }
}
