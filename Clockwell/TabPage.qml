import QtQuick

// One page of the main tabs: built on the first visit, kept and hidden afterwards.
Loader {
    required property bool selected
    property bool visited: false

    anchors.fill: parent
    active: visited
    visible: selected
    enabled: selected
    focus: selected

    onSelectedChanged: visited = visited || selected
    Component.onCompleted: visited = selected
}
