import QtQuick
import Clockwell.Ui

// The one text item: sizes in points before the desktop's text scale, in the interface's type, read out as it is shown.
// It wraps; a label that has to stay on one line sets `maximumLineCount: 1` and elides.
Text {
    id: root

    property real size: 17
    property int weight: Font.Normal
    property bool monospaced: false

    color: Theme.textPrimary
    font.family: monospaced ? Theme.monospacedFamily : Theme.fontFamily
    font.pixelSize: Math.round(size * Theme.textScale)
    font.weight: weight
    wrapMode: Text.Wrap
    elide: Text.ElideRight
    textFormat: Text.PlainText

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
