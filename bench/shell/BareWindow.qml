import QtQuick
import QtQuick.Controls.Basic

Window {
    width: 390
    height: 844
    visible: true

    Column {
        TextField {
            placeholderText: "name@example.org"
        }
        Button {
            text: "Sign in"
        }
    }
}
