import QtQuick
import Clockwell.Ui

// A screen of fields in one scrolling column. The field with the focus stays visible above an on-screen keyboard.
FocusScope {
    id: page

    default property alias content: column.data

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
        contentHeight: column.height + 2 * column.y
        boundsBehavior: Flickable.StopAtBounds
        clip: anchors.bottomMargin > 0

        Column {
            id: column

            x: (flickable.width - width) / 2
            y: 40
            width: Math.min(flickable.width - 2 * Theme.margin, 440)
            spacing: 24
        }
    }

    FocusFollower {
        flickable: flickable
    }
}
