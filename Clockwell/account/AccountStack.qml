pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Ui
import Clockwell.Account

// The signed-out interface: the sign-in screen and what is pushed onto it.
ScreenStack {
    id: stack

    required property AuthStore auth

    duration: Theme.duration
    initialItem: LoginView {
        auth: stack.auth
        onForgotPassword: email => stack.push(Qt.resolvedUrl("ForgotPasswordView.qml"), {prefillEmail: email})
        onEnterCode: email => stack.push(Qt.resolvedUrl("OtpView.qml"), {email: email, purpose: OtpPurpose.VerifyEmail})
        onCreateAccount: stack.push(Qt.resolvedUrl("SignupView.qml"))
    }
}
