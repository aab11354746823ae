import QtQuick
import Clockwell.Ui

// A panel around its content: as wide as the place it stands in, as high as what it holds.
ContinuousRectangle {
    id: root

    default property alias content: holder.data
    readonly property real padding: 18

    implicitWidth: parent?.width ?? 0
    implicitHeight: holder.height + 2 * padding
    radius: 14
    color: Theme.card
    borderColor: Theme.divider
    borderWidth: 1

    Item {
        id: holder
        x: root.padding
        y: root.padding
        width: root.width - 2 * root.padding
        height: childrenRect.height
    }
}
