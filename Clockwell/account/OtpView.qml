import QtQuick
import Clockwell.Ui
import Clockwell.Account

NavigationPage {
    required property string email
    required property int purpose

    title: purpose === OtpPurpose.ResetPassword ? "Reset password" : "Verify email"
}
