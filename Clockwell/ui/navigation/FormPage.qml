import QtQuick
import Clockwell.Ui

// A screen of fields in one scrolling column. The field with the focus stays visible above an on-screen keyboard.
FocusScope {
    id: page

    default property alias content: column.data
    // How far down the fields begin, as a portion of the height; their own height has no part in it, so that a message
    // that appears among them moves nothing above it.
    property real topPortion: 0
    readonly property real leastInset: 32
    // Whether it paints its own background.
    property bool opaque: true

    ScreenBackground {
        anchors.fill: parent
        visible: page.opaque
    }

    RevealingFlickable {
        id: flickable

        anchors {
            fill: parent
            bottomMargin: InputMethod.visible ? InputMethod.keyboardRectangle.height / Screen.devicePixelRatio : 0
        }
        contentWidth: width
        contentHeight: column.y + column.height + page.leastInset
        boundsBehavior: Flickable.StopAtBounds
        pixelAligned: true
        clip: contentHeight > height

        Column {
            id: column

            x: Math.round((flickable.width - width) / 2)
            y: Math.max(page.leastInset, Math.round(flickable.height * page.topPortion))
            width: Math.min(flickable.width - 2 * Theme.margin, 440)
            spacing: 24
        }
    }
}
