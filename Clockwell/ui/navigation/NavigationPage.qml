import QtQuick
import Clockwell.Ui

// A pushed screen: a title bar with the way back above its content. Escape and the platform's back key go back too.
FocusScope {
    id: root

    property string title: ""
    default property alias content: holder.data

    signal back

    focus: true
    Keys.onEscapePressed: back()
    Keys.onBackPressed: back()

    ScreenBackground {}

    NavigationBar {
        id: bar
        width: parent.width
        title: root.title
        goesBack: true
        onBack: root.back()
    }

    Item {
        id: holder
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        width: parent.width
    }
}
