pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Ui
import Clockwell.Account

NavigationPage {
    id: view

    required property NavigationStack stack
    required property AuthStore auth
    required property Timing timing

    title: "Sign up"

    SignupViewModel {
        id: model
        auth: view.auth
    }

    Destination {
        stack: view.stack
        from: view
        file: Qt.resolvedUrl("OtpView.qml")
        properties: ({auth: view.auth, timing: view.timing, email: model.sentEmail, purpose: OtpPurpose.VerifyEmail})
        shown: model.goToOtp
        onLeft: model.goToOtp = false
    }

    FormPage {
        anchors.fill: parent
        focus: true

        BrandHeader {
            width: parent.width
            subtitle: "Create your employee account"
        }

        Column {
            width: parent.width
            spacing: 6

            LabeledField {
                id: fullNameField
                width: parent.width
                label: "Full name"
                placeholder: "Ada Byron"
                textContentType: FieldTraits.Name
                autocap: FieldTraits.Words
                enterKey: Qt.EnterKeyNext
                onTextEdited: model.fullName = text
                onAccepted: emailField.forceActiveFocus()
            }

            LabeledField {
                id: emailField
                width: parent.width
                label: "Email"
                placeholder: "name@example.org"
                keyboard: FieldTraits.EmailKeyboard
                textContentType: FieldTraits.UserName
                enterKey: Qt.EnterKeyNext
                onTextEdited: model.email = text
                onAccepted: phoneField.forceActiveFocus()
            }

            LabeledField {
                id: phoneField
                width: parent.width
                label: "Phone (optional)"
                placeholder: "+92 300 0000000"
                keyboard: FieldTraits.PhonePad
                textContentType: FieldTraits.TelephoneNumber
                enterKey: Qt.EnterKeyNext
                onTextEdited: model.phone = text
                onAccepted: companyCodeField.forceActiveFocus()
            }

            LabeledField {
                id: companyCodeField
                width: parent.width
                label: "Company code (optional)"
                placeholder: "e.g. DEMO"
                autocap: FieldTraits.AllCharacters
                enterKey: Qt.EnterKeyNext
                onTextEdited: model.companyCode = text
                onAccepted: passwordField.forceActiveFocus()
            }

            LabeledField {
                id: passwordField
                width: parent.width
                label: "Password"
                placeholder: "Create a password"
                secure: true
                textContentType: FieldTraits.NewPassword
                enterKey: Qt.EnterKeyGo
                onTextEdited: model.password = text
                onAccepted: model.submit()
            }

            TextLabel {
                width: parent.width
                topPadding: 2
                size: 11
                color: Theme.textMuted
                text: "Min 8 chars with upper, lower & a number."
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
                height: create.y + create.height

                PrimaryButton {
                    id: create
                    y: 10
                    width: parent.width
                    title: "Create account"
                    loading: model.loading
                    disabled: model.incomplete
                    onClicked: model.submit()
                }
            }
        }
    }
}
