import QtQuick
import Clockwell.Ui

// Above a QorField, which carries the same text as its name. Shown and read out in upper case.
Item {
    id: root

    required property string text

    implicitWidth: parent?.width ?? 0
    implicitHeight: label.height

    TextLabel {
        id: label
        objectName: "label"
        width: root.width
        text: root.text
        size: 10
        weight: Font.Medium
        font.letterSpacing: 0.6
        font.capitalization: Font.AllUppercase
        color: Theme.textMuted
        Accessible.name: text.toUpperCase()
    }
}
