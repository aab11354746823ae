pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Ui
import Clockwell.Account

// The fourth tab: the signed-in user's account, with buttons to change the password and to sign out.
FocusScope {
    id: view

    required property AuthStore auth

    ProfileViewModel {
        id: model
        auth: view.auth
        shown: view.visible
    }

    ScreenBackground {}

    NavigationBar {
        id: bar
        width: parent.width
        title: "Profile"
    }

    RevealingFlickable {
        id: page
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        contentHeight: column.y + column.height + 24
        flickableDirection: Flickable.VerticalFlick
        boundsBehavior: Flickable.StopAtBounds
        pixelAligned: true
        clip: true

        Column {
            id: column
            x: Math.round((page.width - width) / 2)
            y: 16
            width: Math.min(page.width, 600) - 2 * Theme.margin
            spacing: 12

            ProfileHeader {
                width: parent.width
                initials: model.initials
                fullName: model.fullName
                email: model.email
            }

            ContinuousRectangle {
                width: parent.width
                height: rows.height
                radius: 14
                color: Theme.card
                borderColor: Theme.divider
                borderWidth: 1

                Column {
                    id: rows
                    width: parent.width

                    ProfileRow {
                        width: parent.width
                        label: "Role"
                        value: model.role
                        spoken: model.spoken(label, value)
                    }
                    Rectangle {
                        x: 12
                        width: parent.width - 2 * x
                        height: 1
                        color: Theme.divider
                    }
                    ProfileRow {
                        width: parent.width
                        label: "Phone"
                        value: model.phone
                        spoken: model.spoken(label, value)
                    }
                    Rectangle {
                        x: 12
                        width: parent.width - 2 * x
                        height: 1
                        color: Theme.divider
                    }
                    ProfileRow {
                        width: parent.width
                        label: "Account status"
                        value: model.status
                        spoken: model.spoken(label, value)
                    }
                }
            }

            ProfileAction {
                width: parent.width
                symbol: "key.fill"
                title: "Change password"
                onClicked: model.showChangePassword = true
            }

            ProfileAction {
                width: parent.width
                symbol: "rectangle.portrait.and.arrow.right"
                title: "Sign out"
                color: Theme.danger
                onClicked: model.showLogoutConfirm = true
            }
        }
    }

    ConfirmationDialog {
        shown: model.showLogoutConfirm
        title: "Sign out of Qor?"
        action: "Sign out"
        destructive: true
        onAccepted: model.signOut()
        onRejected: model.showLogoutConfirm = false
    }

    Sheet {
        shown: model.showChangePassword
        title: "Change password"
        onRejected: model.showChangePassword = false
        content: Component {
            ChangePasswordView {
                auth: view.auth
                onDismissed: model.showChangePassword = false
            }
        }
    }
}
