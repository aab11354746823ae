pragma ComponentBehavior: Bound

import QtQuick
import Clockwell
import Clockwell.Account
import Clockwell.Ui

Window {
    id: root

    required property ClockwellApp app

    width: 390
    height: 844
    minimumWidth: 320
    minimumHeight: 480
    visible: true
    title: "Clockwell"
    color: Theme.background

    // Contents are loaded by file name, so that those for signed-in users cost nothing before the sign-in.
    RootViewModel {
        auth: root.app.auth
        onSignedOut: animated => contents.replace(null, Qt.resolvedUrl("Account/AccountStack.qml"), {auth: root.app.auth, timing: root.app.timing}, animated ? NavigationStack.ReplaceTransition : NavigationStack.Immediate)
        onSignedIn: animated => contents.replace(null, Qt.resolvedUrl("MainTabView.qml"), {app: root.app}, animated ? NavigationStack.ReplaceTransition : NavigationStack.Immediate)
    }

    NavigationStack {
        id: contents
        objectName: "contents"
        anchors.fill: parent

        initialItem: Component {
            Item {
                Spinner {
                    anchors.centerIn: parent
                    color: Theme.brand
                }
            }
        }
    }
}
