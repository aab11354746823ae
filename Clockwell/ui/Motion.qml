import QtQuick
import Clockwell.Ui

// A movement as every dialog and screen makes it.
NumberAnimation {
    duration: Theme.duration
    easing.type: Easing.OutCubic
}
