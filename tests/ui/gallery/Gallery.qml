import QtQuick
import Clockwell.Ui

// Every component in every state, one below the other, as they stand on a screen.
Rectangle {
    id: root

    width: 390
    height: column.height + 2 * column.y
    color: Theme.background

    Column {
        id: column
        x: 20
        y: 24
        width: root.width - 40
        spacing: 16

        BrandHeader { width: parent.width; subtitle: "Sign in to mark attendance" }

        Column {
            width: parent.width
            spacing: 6
            FieldLabel { width: parent.width; text: "Email" }
            QorField { objectName: "email"; width: parent.width; label: "Email"; placeholder: "name@company.com" }
            FieldLabel { width: parent.width; text: "Password" }
            QorField { width: parent.width; label: "Password"; placeholder: "••••••••"; secure: true }
            LinkButton { text: "Forgot password?" }
            InlineError { width: parent.width; message: "The server did not answer in time. Check your connection and try again in a moment." }
            LinkButton { text: "Enter verification code"; color: Theme.warning; weight: Font.DemiBold }
        }

        QorField { objectName: "focused"; width: parent.width; label: "Full name"; text: "Ada Lovelace" }
        QorField { width: parent.width; label: "Password"; text: "correct horse"; secure: true }
        QorField { width: parent.width; label: "Password"; text: "correct horse battery staple and more than fits"; secure: true; reveal: true }

        PrimaryButton { width: parent.width; title: "Sign in" }
        PrimaryButton { width: parent.width; title: "Sign in"; disabled: true }
        PrimaryButton { width: parent.width; title: "Sign in"; loading: true }
        PrimaryButton { width: parent.width; title: "Check In"; color: Theme.success }
        PrimaryButton { width: parent.width; title: "Check Out"; color: Theme.warning }
        PrimaryButton { objectName: "ring"; width: parent.width; title: "With the keyboard" }

        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 4
            TextLabel { text: "New here?"; size: 14; color: Theme.textMuted }
            LinkButton { objectName: "link"; text: "Create an account"; size: 14; weight: Font.DemiBold }
        }

        Card {
            width: parent.width
            Column {
                width: parent.width
                spacing: 4
                TextLabel { width: parent.width; text: "OFFICE"; size: 10; color: Theme.textMuted }
                TextLabel { width: parent.width; text: "Head Office, a name that is so long that it has to wrap"; size: 16; weight: Font.DemiBold; color: Theme.white }
                TextLabel { width: parent.width; text: "Hours 09:30–18:00 · within 150m"; size: 12; color: Theme.textSecondary }
                Row {
                    spacing: 16
                    TabularLabel { text: "111m"; size: 22; weight: Font.Bold }
                    TabularLabel { text: "888m"; size: 22; weight: Font.Bold }
                    Symbol { name: "checkmark.shield.fill"; size: 30; color: Theme.success }
                }
            }
        }

        Flow {
            width: parent.width
            spacing: 8
            Repeater {
                model: ["ON_TIME", "LATE", "HALF_DAY", "ABSENT", "MISSING_CHECK_OUT", "ON_LEAVE", "APPROVED", "on_time"]
                StatusBadge { required property string modelData; status: modelData }
            }
        }

        Flow {
            width: parent.width
            spacing: 12
            Repeater {
                model: symbols
                Symbol { required property string modelData; name: modelData; size: 28; color: Theme.textSecondary }
            }
        }

        Row {
            spacing: 16
            Spinner { color: Theme.brand; size: 32 }
            Spinner { color: Theme.white }
            IconButton { symbol: "xmark"; label: "Close" }
            IconButton { objectName: "icon"; symbol: "chevron.left"; label: "Back"; color: Theme.brand }
            Symbol { name: "calendar.badge.clock"; size: 34; color: Theme.textMuted }
        }
    }

    Row {
        x: 0
        y: column.y + column.height
        height: 60
    }
}
