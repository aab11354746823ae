import QtQuick
import Clockwell.Ui

// What went wrong, where it went wrong. Announced when it appears.
TextLabel {
    id: root

    required property string message

    width: parent?.width ?? 0
    text: message
    size: 13
    color: Theme.danger
    Accessible.role: Accessible.AlertMessage

    RevealWhenShown {
        text: root.message
    }
}
