import QtQuick
import Clockwell.Ui

// A symbol by its name in Symbols.cmake, crisp at every size. Decoration: what it means has to be said in words beside it.
Image {
    required property string name
    property real size: 24
    property color color: Theme.textMuted

    source: name && size > 0 ? Theme.picture("symbols/" + name, color) : ""
    sourceSize.width: Math.round(size)
    sourceSize.height: Math.round(size)
    fillMode: Image.Pad
    mirror: name === "circle.lefthalf.filled" // of the icon set's circles, the right half is filled
}
