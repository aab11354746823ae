import QtQuick
import Clockwell.Ui

// Above a QorField, which carries the same text as its name. Shown and read out in upper case.
TextLabel {
    required text

    width: parent?.width ?? 0
    size: 10
    weight: Font.Medium
    font.letterSpacing: 0.6
    font.capitalization: Font.AllUppercase
    color: Theme.textMuted
    Accessible.name: text.toUpperCase()
}
