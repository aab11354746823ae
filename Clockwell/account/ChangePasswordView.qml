pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Ui
import Clockwell.Account

// The content of the change-password sheet: a screen with its own navigation bar.
FocusScope {
    id: view

    required property AuthStore auth

    signal dismissed

    ChangePasswordViewModel {
        id: model
        auth: view.auth
        onDismissed: view.dismissed()
    }

    NavigationBar {
        id: bar
        width: parent.width
        title: "Change password"
        cancel: "Cancel"
        onBack: view.dismissed()
    }

    FormPage {
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        focus: true
        opaque: false

        Column {
            width: parent.width

            LabeledField {
                width: parent.width
                label: "Current password"
                placeholder: "Current password"
                secure: true
                textContentType: FieldTraits.Password
                enterKey: Qt.EnterKeyNext
                onTextEdited: model.current = text
                onAccepted: newPasswordField.forceActiveFocus()
            }

            LabeledField {
                id: newPasswordField
                width: parent.width
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
                height: update.y + update.height

                PrimaryButton {
                    id: update
                    y: 10
                    width: parent.width
                    title: "Update password"
                    loading: model.loading
                    disabled: model.incomplete
                    onClicked: model.submit()
                }
            }
        }
    }

    Alert {
        shown: model.done
        title: "Password changed"
        button: "OK"
        onAccepted: model.acknowledge()
    }
}
