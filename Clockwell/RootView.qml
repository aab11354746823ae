import QtQuick
import Clockwell.Account

Window {
    id: root
    required property AuthStore auth
    width: 390
    height: 844
    visible: true
    LoginView { auth: root.auth; anchors.fill: parent }
}
