pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Ui
import Clockwell.Account

// The navigation stack of the signed-out interface; the sign-in screen is its root.
NavigationStack {
    id: stack

    required property AuthStore auth
    required property Timing timing

    initialItem: LoginView {
        auth: stack.auth
        onForgotPassword: email => stack.push(Qt.resolvedUrl("ForgotPasswordView.qml"), {stack: stack, auth: stack.auth, timing: stack.timing, prefillEmail: email})
        onEnterCode: email => stack.push(Qt.resolvedUrl("OtpView.qml"), {auth: stack.auth, timing: stack.timing, email: email, purpose: OtpPurpose.VerifyEmail})
        onCreateAccount: stack.push(Qt.resolvedUrl("SignupView.qml"), {stack: stack, auth: stack.auth, timing: stack.timing})
    }
}
