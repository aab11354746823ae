import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// The bar at the bottom of the screen: the button for the next punch, or the message that the day is complete.
Rectangle {
    id: bar

    required property HomeViewModel home
    required property real contentWidth

    color: Theme.background
    height: Math.max(button.implicitHeight, complete.visible ? complete.height : 0) + 12 + 16

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.divider
    }

    PrimaryButton {
        id: button
        x: Math.round((bar.width - width) / 2)
        y: 12
        width: bar.contentWidth
        title: bar.home.punchTitle
        color: bar.home.punchColor
        loading: bar.home.punching
        visible: !bar.home.dayComplete
        onClicked: bar.home.punch()
    }

    Row {
        id: complete
        anchors.horizontalCenter: parent.horizontalCenter
        y: 12 + Math.max(0, Math.round((button.implicitHeight - height) / 2))
        spacing: 8
        visible: bar.home.dayComplete

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: "checkmark.seal.fill"
            size: 22
            color: Theme.success
        }
        TextLabel {
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, bar.contentWidth - 30)
            text: "Attendance complete for today"
            size: 15
            weight: Font.DemiBold
        }
    }
}
