import QtQuick
import Clockwell.Ui

// A tab's screen with its large title at the top.
FocusScope {
    id: page

    required property string title

    ScreenBackground {
        anchors.fill: parent
    }

    TextLabel {
        x: Theme.margin
        y: Theme.margin
        width: parent.width - 2 * Theme.margin
        size: 28
        weight: Font.Bold
        color: Theme.textPrimary
        text: page.title
    }
}
