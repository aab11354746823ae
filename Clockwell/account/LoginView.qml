import QtQuick
import Clockwell.Ui
import Clockwell.Account

Item {
    id: view
    required property AuthStore auth
    TextLabel { text: view.auth.fullName; anchors.centerIn: parent }
}
