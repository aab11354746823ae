import QtQuick
import QtQuick.Templates as T
import Clockwell.Ui

// The bar with the four tabs. The arrow keys select the next one.
T.TabBar {
    id: bar

    implicitHeight: contentHeight
    horizontalPadding: Math.max(0, (width - 560) / 2)
    Accessible.name: "Tabs"
    Keys.onLeftPressed: {
        decrementCurrentIndex();
        currentItem.forceActiveFocus(Qt.TabFocusReason);
    }
    Keys.onRightPressed: {
        incrementCurrentIndex();
        currentItem.forceActiveFocus(Qt.TabFocusReason);
    }

    background: Rectangle {
        color: Theme.card

        Rectangle {
            width: parent.width
            height: 1
            color: Theme.divider
        }
    }

    contentItem: Row {
        Repeater {
            model: bar.contentModel
        }
    }

    TabBarButton {
        title: "Attendance"
        symbol: "location.fill.viewfinder"
    }
    TabBarButton {
        title: "History"
        symbol: "calendar"
    }
    TabBarButton {
        title: "Summary"
        symbol: "chart.bar.fill"
    }
    TabBarButton {
        title: "Profile"
        symbol: "person.crop.circle"
    }
}
