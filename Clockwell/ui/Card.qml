import QtQuick
import Clockwell.Ui

// A panel around its content: as wide as the place it stands in, as high as what it holds.
Panel {
    id: root

    default property alias content: holder.data
    readonly property real padding: 18

    implicitWidth: parent?.width ?? 0
    implicitHeight: holder.height + 2 * padding

    Item {
        id: holder
        x: root.padding
        y: root.padding
        width: root.width - 2 * root.padding
        height: childrenRect.height
    }
}
