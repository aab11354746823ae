import QtQuick
import Clockwell.Ui

// The one clear thing to do on a screen. While `loading` or `disabled` it reacts to nothing.
Button {
    id: root

    required property string title
    property bool loading: false
    property color color: Theme.brand
    property bool disabled: false

    enabled: !loading && !disabled
    text: title
    implicitWidth: parent?.width ?? 0
    horizontalPadding: 16
    verticalPadding: 14
    cornerRadius: 12

    background: ContinuousRectangle {
        radius: root.cornerRadius
        color: root.pressed ? Qt.darker(root.color, 1.15) : root.color
        opacity: root.enabled ? 1 : 0.5
    }

    contentItem: TextLabel {
        text: root.title
        weight: Font.DemiBold
        color: Theme.white
        horizontalAlignment: Text.AlignHCenter
        opacity: root.loading ? 0 : 1
        Accessible.ignored: true
    }

    Spinner {
        anchors.centerIn: parent
        visible: root.loading
        size: 20 * Theme.textScale
        color: Theme.white
    }
}
