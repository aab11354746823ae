import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// A button without a look of its own, besides the ring. A tap leaves the focus, and so the on-screen keyboard, where it is.
T.Button {
    id: control

    property int role: Accessible.Button
    property alias ringShown: interaction.ringShown
    property alias cornerRadius: interaction.cornerRadius
    property alias ringGap: interaction.ringGap

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    focusPolicy: Qt.TabFocus
    containmentMask: TouchArea {}

    Accessible.role: role
    Accessible.onRoleChanged: Accessible.role = role // Qt 6.4 makes it a button as soon as a screen reader comes
    Accessible.onPressAction: clicked()

    Keys.forwardTo: [interaction]
    onClicked: (Window.activeFocusItem as FormTextField)?.commit() // whatever this does, it is done with what is on the screen

    ButtonInteraction {
        id: interaction
        button: control
    }
}
