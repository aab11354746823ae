import QtQuick
import Clockwell.Ui
import Clockwell.Account

TitledPage {
    required property AuthStore auth

    title: "Profile"
}
