import QtQuick
import Clockwell.Ui

// What dims the screen below an alert or a dialog.
Rectangle {
    color: Theme.dim

    Behavior on opacity {
        Motion {}
    }
}
