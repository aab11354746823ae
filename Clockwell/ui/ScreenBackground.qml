import QtQuick
import Clockwell.Ui

// Behind everything else of a screen, under the safe areas too.
Rectangle {
    anchors.fill: parent
    color: Theme.background
}
