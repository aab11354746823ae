import QtQuick
import Clockwell.Ui

Row {
    id: root

    property string subtitle: ""

    spacing: 12

    AppLogo {
        id: logo
        objectName: "logo"
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
