import QtQuick
import Clockwell.Ui

// The one clear thing to do on a screen. While `loading` or `disabled` it reacts to nothing.
Pressable {
    id: root

    required property string title
    property bool loading: false
    property color color: Theme.brand
    property bool disabled: false

    enabled: !loading && !disabled
    implicitWidth: parent?.width ?? 0
    implicitHeight: label.height + 2 * 14

    Accessible.role: Accessible.Button
    Accessible.name: title

    ContinuousRectangle {
        objectName: "fill"
        anchors.fill: parent
        radius: 12
        color: root.pressed ? Qt.darker(root.color, 1.15) : root.color
        opacity: root.enabled ? 1 : 0.5
    }

    TextLabel {
        id: label
        objectName: "label"
        x: 16
        y: 14
        width: root.width - 2 * x
        text: root.title
        weight: Font.DemiBold
        color: Theme.white
        horizontalAlignment: Text.AlignHCenter
        opacity: root.loading ? 0 : 1
        Accessible.ignored: true
    }

    Spinner {
        objectName: "spinner"
        anchors.centerIn: parent
        visible: root.loading
        size: 20 * Theme.textScale
        color: Theme.white
        still: Theme.reducedMotion
    }

    FocusRing {
        objectName: "ring"
        shown: root.focusVisible
        cornerRadius: 12
    }
}
