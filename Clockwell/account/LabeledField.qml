import QtQuick
import Clockwell.Ui
import Clockwell.Account

// A form row: a field with its label above.
FocusScope {
    id: root

    property alias label: field.label
    property alias placeholder: field.placeholder
    property alias text: field.text
    property alias cursorPosition: field.cursorPosition
    property alias secure: field.secure
    property alias keyboard: field.keyboard
    property alias textContentType: field.textContentType
    property alias autocap: field.autocap
    property alias enterKey: field.enterKey

    signal textEdited
    signal accepted

    implicitHeight: field.y + field.height

    FieldLabel {
        id: heading
        y: 6
        width: root.width
        text: field.label
    }

    QorField {
        id: field
        y: heading.y + heading.height + 6
        width: root.width
        focus: true
        label: ""
        onTextEdited: root.textEdited()
        onAccepted: root.accepted()
    }
}
