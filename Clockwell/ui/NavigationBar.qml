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

    // A word and a title that do not fit beside each other stand one below the other.
    readonly property real side: Math.max(goesBack ? backButton.x + backButton.width : 0, cancel !== "" ? 2 * word.x + word.width : 0)
    readonly property bool stacked: cancel !== "" && heading.implicitWidth > width - 2 * side

    readonly property real firstRow: Math.max(44, word.height)

    implicitHeight: stacked ? firstRow + heading.height + 8 : Math.max(44, heading.height + 16)

    IconButton {
        id: backButton
        x: 4
        anchors.verticalCenter: parent.verticalCenter
        visible: root.goesBack
        symbol: "chevron.left"
        size: 22 * Math.min(Theme.textScale, 1.5)
        label: qsTr("Back")
        color: Theme.brand
        onTriggered: root.back()
    }

    LinkText {
        id: word
        x: 16
        y: Math.round(((root.stacked ? root.firstRow : root.height) - height) / 2)
        visible: root.cancel !== ""
        text: root.cancel
        size: 17
        Accessible.role: Accessible.Button
        onTriggered: root.back()
    }

    TextLabel {
        id: heading
        anchors.horizontalCenter: parent.horizontalCenter
        y: root.stacked ? root.firstRow : Math.round((root.height - height) / 2)
        width: root.stacked ? root.width - 2 * word.x : root.width - 2 * root.side
        text: root.title
        weight: Font.DemiBold
        horizontalAlignment: Text.AlignHCenter
    }
}
