import QtQuick
import Clockwell.Ui

// Above a QorField. Shown in upper case, read out as it is written.
TextLabel {
    id: root

    implicitWidth: parent?.width ?? 0
    size: 10
    weight: Font.Medium
    font.letterSpacing: 0.6
    font.capitalization: Font.AllUppercase
    color: Theme.textMuted
}
