pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
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

    // Contents are named by file: the signed-in ones cost nothing until somebody signs in.
    RootViewModel {
        auth: root.app.auth
        onSignedOut: animated => contents.show("Account/AccountStack.qml", {auth: root.app.auth}, animated)
        onSignedIn: animated => contents.show("MainTabView.qml", {app: root.app}, animated)
    }

    T.StackView {
        id: contents
        objectName: "contents"

        function show(file: string, properties: var, animated: bool) {
            replace(null, Qt.resolvedUrl(file), properties, animated ? T.StackView.ReplaceTransition : T.StackView.Immediate)
        }

        anchors.fill: parent

        initialItem: Item {
            Spinner {
                anchors.centerIn: parent
                color: Theme.brand
            }
        }
        replaceEnter: Transition {
            NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.duration; easing.type: Easing.InOutQuad }
        }
        replaceExit: Transition {
            NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.duration; easing.type: Easing.InOutQuad }
        }
    }
}
