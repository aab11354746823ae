import QtQuick
import Clockwell.Ui
import Clockwell.Account

// The user of the account: initials in a circle, full name and e-mail address.
Item {
    id: root

    required property string initials
    required property string fullName
    required property string email

    implicitHeight: nameAndEmail.y + nameAndEmail.height + 12

    ContinuousRectangle {
        id: circle
        x: Math.round((root.width - width) / 2)
        width: 78
        height: 78
        radius: 39
        color: Theme.surface

        TextLabel {
            anchors.fill: parent
            anchors.margins: 6
            size: 28
            weight: Font.Bold
            color: Theme.brand
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            maximumLineCount: 1
            fontSizeMode: Text.HorizontalFit // the circle does not grow with the text
            minimumPixelSize: 12
            text: root.initials
            Accessible.ignored: true
        }
    }

    Column {
        id: nameAndEmail
        y: circle.height + 12
        width: root.width
        spacing: 4

        TextLabel {
            width: parent.width
            size: 19
            weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
            text: root.fullName
        }

        TextLabel {
            width: parent.width
            size: 13
            color: Theme.textSecondary
            horizontalAlignment: Text.AlignHCenter
            text: root.email
        }
    }
}
