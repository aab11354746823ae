pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Ui
import Clockwell.Account

NavigationPage {
    id: view

    required property NavigationStack stack
    required property AuthStore auth
    required property Timing timing
    required property string prefillEmail

    title: "Forgot password"
    onVisibleChanged: model.prefillIfVisible(visible)
    Component.onCompleted: model.prefillIfVisible(visible)

    ForgotPasswordViewModel {
        id: model
        auth: view.auth
        timing: view.timing
        prefillEmail: view.prefillEmail
    }

    Destination {
        stack: view.stack
        from: view
        file: Qt.resolvedUrl("OtpView.qml")
        properties: ({auth: view.auth, timing: view.timing, email: model.sentEmail, purpose: OtpPurpose.ResetPassword})
        shown: model.goToReset
        onLeft: model.goToReset = false
    }

    FormPage {
        anchors.fill: parent
        focus: true

        BrandHeader {
            width: parent.width
            subtitle: "Reset your password"
        }

        TextLabel {
            width: parent.width
            size: 13
            color: Theme.textSecondary
            text: "Enter your account email. We'll send a 6-digit reset code."
        }

        Column {
            width: parent.width
            spacing: 6

            LabeledField {
                width: parent.width
                label: "Email"
                placeholder: "name@example.org"
                keyboard: FieldTraits.EmailKeyboard
                textContentType: FieldTraits.UserName
                text: model.email
                enterKey: Qt.EnterKeyGo
                onTextEdited: model.email = text
                onAccepted: model.submit()
            }

            TextLabel {
                width: parent.width
                visible: model.informed
                topPadding: 6
                size: 13
                color: Theme.success
                text: model.info
                Accessible.role: Accessible.AlertMessage

                RevealWhenShown {
                    text: model.info
                }
            }

            Item {
                width: parent.width
                height: failure.y + failure.height
                visible: model.failed

                InlineError {
                    id: failure
                    y: 6
                    width: parent.width
                    message: model.error
                }
            }

            Item {
                width: parent.width
                height: send.y + send.height

                PrimaryButton {
                    id: send
                    y: 10
                    width: parent.width
                    title: "Send reset code"
                    loading: model.loading
                    disabled: model.incomplete
                    onClicked: model.submit()
                }
            }
        }
    }
}
