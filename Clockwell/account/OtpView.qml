import QtQuick
import Clockwell.Ui
import Clockwell.Account

NavigationPage {
    enum Purpose {
        VerifyEmail,
        ResetPassword
    }

    required property string email
    required property int purpose

    title: purpose === OtpView.ResetPassword ? "Reset password" : "Verify email"
}
