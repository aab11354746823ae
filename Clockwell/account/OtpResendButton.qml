import QtQuick
import Clockwell.Ui
import Clockwell.Account

// Requests another code. While it is locked, its text shows the remaining seconds, so it is muted but stays readable;
// while the request runs, it is faded like any disabled button.
Button {
    id: root

    required text
    required property bool locked
    required property bool busy

    enabled: !locked && !busy
    cornerRadius: 4

    contentItem: TextLabel {
        objectName: "label"
        text: root.text
        size: 13
        color: root.locked ? Theme.textMuted : Theme.brand
        opacity: root.pressed || root.busy ? 0.5 : 1
        horizontalAlignment: Text.AlignHCenter
        Accessible.ignored: true
    }
}
