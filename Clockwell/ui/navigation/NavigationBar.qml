import QtQuick
import Clockwell.Ui

// The bar at the top of a screen: its title, small, in the middle, and at the leading end the way back: a chevron, or a
// word for what is given up by going.
Item {
    id: root

    property string title: ""
    property bool goesBack: false
    property string cancel: ""

    signal back

    // In the middle of the bar where there is room, else beside the way back; a word and a title that do not fit beside
    // each other stand one below the other.
    readonly property real side: Math.max(goesBack ? backButton.x + backButton.width : 0, cancel !== "" ? 2 * word.x + word.width : 0)
    readonly property bool stacked: cancel !== "" && heading.implicitWidth > width - side - word.x

    readonly property real firstRow: Math.max(44, word.height)

    implicitHeight: stacked ? firstRow + heading.height + 8 : Math.max(44, heading.height + 16)

    IconButton {
        id: backButton
        x: 4
        anchors.verticalCenter: parent.verticalCenter
        visible: root.goesBack
        symbol: "chevron.left"
        size: 22 * Math.min(Theme.textScale, 1.5)
        label: "Back"
        color: Theme.brand
        onClicked: root.back()
    }

    LinkButton {
        id: word
        x: 16
        y: Math.round(((root.stacked ? root.firstRow : root.height) - height) / 2)
        visible: root.cancel !== ""
        text: root.cancel
        size: 17
        role: Accessible.Button
        onClicked: root.back()
    }

    TextLabel {
        id: heading
        x: Math.round(Math.max(root.stacked ? word.x : root.side, (root.width - width) / 2))
        y: root.stacked ? root.firstRow : Math.round((root.height - height) / 2)
        width: Math.min(Math.ceil(implicitWidth), root.width - (root.stacked ? 2 * word.x : root.side + word.x))
        text: root.title
        weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
    }
}
