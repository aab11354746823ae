import QtQuick
import Clockwell.Ui
import Clockwell.Account

NavigationPage {
    title: "Sign up"
}
