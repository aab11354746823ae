pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Ui

// What can be done with the text of a field: a bar beside the field, or a column where a bar is too wide.
ContinuousRectangle {
    id: root

    required property OpenEditMenu menu
    property bool stacked: false
    property real widest: 0

    width: entries.width
    height: entries.height
    radius: 12
    color: Qt.lighter(Theme.surface, 1.25) // nearer than the fields
    borderColor: Theme.textMuted
    borderWidth: 1
    Component.onCompleted: stacked = entries.width > menu.room

    Accessible.role: Accessible.PopupMenu
    Accessible.name: "Edit"

    Grid {
        id: entries
        columns: root.stacked ? 1 : root.menu.titles.length

        Repeater {
            model: root.menu.titles

            EditMenuButton {
                required property int index
                required property string modelData

                width: root.stacked ? root.widest : implicitWidth
                title: modelData
                current: index === root.menu.current
                separated: index > 0
                stacked: root.stacked
                onImplicitWidthChanged: root.widest = Math.max(root.widest, implicitWidth)
                onTriggered: root.menu.choose(index)
            }
        }
    }
}
