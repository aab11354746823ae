import QtQuick
import Clockwell.Ui

// What went wrong, where it went wrong. Announced when it appears.
Item {
    id: root

    required property string message

    implicitWidth: parent?.width ?? 0
    implicitHeight: label.height

    RevealWhenShown {
        item: root
        text: root.message
    }

    TextLabel {
        id: label
        objectName: "label"
        width: root.width
        text: root.message
        size: 13
        color: Theme.danger

        Accessible.role: Accessible.AlertMessage
    }
}
