import QtQuick
import Clockwell.Ui

// A screen of fields in one scrolling column. The field with the focus stays visible above an on-screen keyboard.
FocusScope {
    id: page

    default property alias content: column.data
    // How much of the height that the fields leave free stands above them.
    property real sparePortion: 0
    readonly property real leastInset: 32

    ScreenBackground {
        anchors.fill: parent
    }

    Flickable {
        id: flickable

        anchors {
            fill: parent
            bottomMargin: InputMethod.visible ? InputMethod.keyboardRectangle.height / Screen.devicePixelRatio : 0
        }
        contentWidth: width
        contentHeight: column.y + column.height + page.leastInset
        boundsBehavior: Flickable.StopAtBounds
        clip: anchors.bottomMargin > 0

        Column {
            id: column

            x: (flickable.width - width) / 2
            y: page.leastInset + Math.max(0, flickable.height - height - 2 * page.leastInset) * page.sparePortion
            width: Math.min(flickable.width - 2 * Theme.margin, 440)
            spacing: 24
        }
    }

    FocusFollower {
        flickable: flickable
    }
}
