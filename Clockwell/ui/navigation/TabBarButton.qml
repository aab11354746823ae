import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// One tab of the tab bar.
T.TabButton {
    id: root

    required property string title
    required property string symbol
    readonly property color tint: checked ? Theme.brand : Theme.textMuted

    text: title
    implicitWidth: 96
    implicitHeight: Math.max(49, content.height + 2 * 5)
    focusPolicy: Qt.TabFocus
    containmentMask: TouchArea {}

    Accessible.selectable: true
    Accessible.selected: checked
    Accessible.onPressAction: clicked()

    Keys.forwardTo: [interaction]
    onClicked: checked = true // by Enter and assistive technology, too

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

    ButtonInteraction {
        id: interaction
        button: root
        ringGap: -4
    }
}
