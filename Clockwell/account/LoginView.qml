pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Ui
import Clockwell.Account

FormPage {
    id: view

    required property AuthStore auth

    signal forgotPassword(email: string)
    signal enterCode(email: string)
    signal createAccount()

    topPortion: 0.14

    LoginViewModel {
        id: model
        auth: view.auth
    }

    BrandHeader {
        width: parent.width
        subtitle: "Sign in to mark attendance"
    }

    Column {
        width: parent.width
        spacing: 6

        FieldLabel {
            width: parent.width
            text: "Email"
        }

        QorField {
            id: emailField
            width: parent.width
            label: "Email"
            placeholder: "name@example.org"
            keyboard: FieldTraits.EmailKeyboard
            textContentType: FieldTraits.UserName
            enterKey: Qt.EnterKeyNext
            onTextEdited: model.email = text
            onAccepted: passwordField.forceActiveFocus()
        }

        FieldLabel {
            width: parent.width
            text: "Password"
        }

        QorField {
            id: passwordField
            width: parent.width
            label: "Password"
            placeholder: "••••••••"
            secure: true
            textContentType: FieldTraits.Password
            enterKey: Qt.EnterKeyGo
            onTextEdited: model.password = text
            onAccepted: model.signIn()
        }

        Item {
            width: parent.width
            height: forgot.y + forgot.height

            LinkButton {
                id: forgot
                y: 4
                size: 13
                text: "Forgot password?"
                onClicked: view.forgotPassword(model.email)
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
            height: enterCode.y + enterCode.height
            visible: model.needsVerification

            LinkButton {
                id: enterCode
                y: 2
                size: 13
                weight: Font.DemiBold
                color: Theme.warning
                text: "Enter verification code"
                onClicked: view.enterCode(model.email)
            }
        }

        PrimaryButton {
            width: parent.width
            title: "Sign in"
            loading: model.loading
            disabled: model.incomplete
            onClicked: model.signIn()
        }
    }

    // Side by side if both fit, otherwise (with large text) one below the other.
    Grid {
        anchors.horizontalCenter: parent.horizontalCenter
        columns: newHere.implicitWidth + create.implicitWidth + spacing <= parent.width ? 2 : 1
        horizontalItemAlignment: Grid.AlignHCenter
        spacing: 4
        topPadding: 4

        TextLabel {
            id: newHere
            size: 14
            color: Theme.textMuted
            text: "New here?"
        }

        LinkButton {
            id: create
            size: 14
            weight: Font.DemiBold
            text: "Create an account"
            onClicked: view.createAccount()
        }
    }
}
