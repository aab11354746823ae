import QtQuick
import Clockwell.Ui

// A pushed screen: a title bar with the way back above its content. Escape and the platform's back key go back too.
FocusScope {
    id: root

    property string title: ""
    default property alias content: holder.data

    signal back

    focus: true
    Keys.onEscapePressed: back()
    Keys.onBackPressed: back()

    ScreenBackground {}

    Item {
        id: bar
        width: parent.width
        height: Math.max(44, heading.height + 16)

        IconButton {
            id: backButton
            x: 4
            anchors.verticalCenter: parent.verticalCenter
            symbol: "chevron.left"
            size: 22 * Math.min(Theme.textScale, 1.5)
            label: qsTr("Back")
            color: Theme.brand
            onTriggered: root.back()
        }

        TextLabel {
            id: heading
            anchors.centerIn: parent
            width: parent.width - 2 * (backButton.x + backButton.width)
            text: root.title
            weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
        }
    }

    Item {
        id: holder
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        width: parent.width
    }
}
