pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Ui
import Clockwell.Account

NavigationPage {
    id: view

    required property AuthStore auth
    required property Timing timing
    required property string email
    required property int purpose

    title: model.title

    OtpViewModel {
        id: model
        auth: view.auth
        timing: view.timing
        email: view.email
        purpose: view.purpose
        onNewPasswordFocusRequested: newPasswordField.forceActiveFocus()
        onDismissed: view.back()
    }

    Alert {
        shown: model.done
        title: "All set"
        message: model.doneMessage
        button: "OK"
        onAccepted: model.acknowledge()
    }

    FormPage {
        anchors.fill: parent
        focus: true

        BrandHeader {
            width: parent.width
            subtitle: model.subtitle
        }

        Column {
            width: parent.width
            spacing: 2

            TextLabel {
                width: parent.width
                size: 13
                color: Theme.textSecondary
                text: "We sent a 6-digit code to"
            }

            TextLabel {
                width: parent.width
                size: 14
                weight: Font.DemiBold
                text: view.email
            }
        }

        Column {
            width: parent.width
            spacing: 6

            LabeledField {
                width: parent.width
                label: "Verification code"
                placeholder: "123456"
                keyboard: FieldTraits.NumberPad
                textContentType: FieldTraits.OneTimeCode
                text: model.code
                enterKey: model.resetting ? Qt.EnterKeyNext : Qt.EnterKeyGo
                onTextEdited: cursorPosition = model.enterCode(text, cursorPosition)
                onAccepted: model.acceptCode()
            }

            LabeledField {
                id: newPasswordField
                width: parent.width
                visible: model.resetting
                label: "New password"
                placeholder: "New password"
                secure: true
                textContentType: FieldTraits.NewPassword
                enterKey: Qt.EnterKeyGo
                onTextEdited: model.newPassword = text
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
                height: submit.y + submit.height

                PrimaryButton {
                    id: submit
                    y: 10
                    width: parent.width
                    title: model.submitTitle
                    loading: model.loading
                    disabled: model.incomplete
                    onClicked: model.submit()
                }
            }

            Item {
                width: parent.width
                height: resend.y + resend.height

                OtpResendButton {
                    id: resend
                    y: 16
                    x: Math.round((parent.width - width) / 2)
                    width: Math.min(implicitWidth, parent.width)
                    text: model.resendTitle
                    locked: model.resendLocked
                    busy: model.resending
                    onClicked: model.resend()
                }
            }
        }
    }
}
