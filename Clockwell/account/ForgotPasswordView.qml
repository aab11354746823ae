import QtQuick
import Clockwell.Ui
import Clockwell.Account

NavigationPage {
    required property string prefillEmail

    title: "Forgot password"
}
