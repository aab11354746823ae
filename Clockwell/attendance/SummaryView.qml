pragma ComponentBehavior: Bound

import QtQuick
import Clockwell.Attendance
import Clockwell.Ui

// The current month in numbers, with placeholders before the first response.
FocusScope {
    id: view

    required property AttendanceStore attendance

    readonly property real contentWidth: Math.min(width, 600) - 2 * Theme.margin

    SummaryViewModel {
        id: summary
        attendance: view.attendance
        shown: view.visible
    }

    ScreenBackground {}

    Flickable {
        id: page
        objectName: "page"
        anchors.fill: parent
        clip: true
        focus: true
        activeFocusOnTab: true
        contentHeight: column.y + column.height + 24
        pixelAligned: true
        flickableDirection: Flickable.VerticalFlick
        Keys.onDownPressed: flick(0, -900)
        Keys.onUpPressed: flick(0, 900)

        Accessible.role: Accessible.Pane
        Accessible.name: "Summary"

        Column {
            id: column
            x: Math.round((page.width - width) / 2)
            y: 24
            width: view.contentWidth
            spacing: 12

            Column {
                width: parent.width
                bottomPadding: 4
                spacing: 4

                TextLabel {
                    id: title
                    width: parent.width
                    text: "Summary"
                    size: 28
                    weight: Font.Bold
                    color: Theme.white
                }
                CountOrPlaceholder {
                    width: parent.width
                    text: ""
                    size: 17
                    placeholderWidth: 96 * Theme.textScale
                    visible: !summary.present
                }
                TextLabel {
                    width: parent.width
                    visible: summary.present
                    text: summary.monthTitle
                    horizontalAlignment: Text.AlignLeft // also for right-to-left scripts, like the layout of the page
                    size: 17
                    weight: Font.DemiBold
                    color: Theme.textSecondary
                }
            }

            Grid {
                id: grid

                // A tile needs about 112 points at the normal text size.
                readonly property int fitting: width < 2 * 112 * Theme.textScale + columnSpacing ? 1 : 2

                width: parent.width
                columns: fitting
                columnSpacing: 12
                rowSpacing: 12

                Repeater {
                    model: summary.tiles

                    SummaryTile {
                        width: Math.floor((grid.width - (grid.columns - 1) * grid.columnSpacing) / grid.columns)
                    }
                }
            }

            TotalCard {
                width: parent.width
                total: summary.totalWorked
                spoken: summary.totalSpoken
            }
        }
    }

    PullToRefresh {
        flickable: page
        refreshing: summary.refreshing
        loading: summary.loading && !summary.refreshing
        asideCenter: column.y + title.height / 2
        onTriggered: summary.refresh()
    }
}
