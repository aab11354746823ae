import QtQuick
import Clockwell.Ui

// A screen of its own that slides up over the present one: nearly all of a phone, a form in the middle of a tablet.
SheetControl {
    id: root

    required property string title
    readonly property bool wide: width >= 600

    duration: Theme.duration
    panel: panel
    holder: holder
    tapBesideDismisses: true

    Accessible.role: Accessible.Dialog
    Accessible.name: title

    DialogGround {
        openness: root.openness
    }

    ContinuousRectangle {
        id: panel
        readonly property real gap: 20
        readonly property real formHeight: Math.min(root.height - 2 * gap, 620)
        readonly property real rest: root.wide ? Math.round((root.height - formHeight) / 2) : gap
        readonly property real overhang: root.wide ? 0 : 40 // of the lower corners, which are not to be seen
        x: Math.round((root.width - width) / 2)
        y: Math.round(root.height - (root.height - rest) * root.openness)
        width: root.wide ? 540 : root.width
        height: (root.wide ? formHeight : root.height - rest) + overhang
        radius: 14
        color: Theme.background
        borderColor: Theme.divider
        borderWidth: 1

        Item {
            id: holder
            width: parent.width
            height: parent.height - parent.overhang
        }
    }
}
