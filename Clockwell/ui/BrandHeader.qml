import QtQuick
import Clockwell.Ui

Row {
    id: root

    property string subtitle: ""

    spacing: 12

    Image {
        id: logo
        objectName: "logo"
        source: Theme.picture("AppLogo")
        sourceSize.width: 46
        sourceSize.height: 46
    }

    Column {
        anchors.verticalCenter: parent.verticalCenter
        width: root.width - logo.width - root.spacing
        spacing: 2

        TextLabel {
            width: parent.width
            objectName: "title"
            text: "Qorvane"
            size: 17
            weight: Font.Bold
            color: Theme.white
        }

        TextLabel {
            width: parent.width
            objectName: "subtitle"
            visible: text !== ""
            text: root.subtitle
            size: 12
            color: Theme.textSecondary
        }
    }
}
