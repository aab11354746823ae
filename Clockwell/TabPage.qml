import QtQuick

// One page of the tabs: built when it is first selected, afterwards only hidden. By a Repeater, since Qt 6.4's Loader
// cannot build components that are bound to their surroundings.
FocusScope {
    id: page

    required property bool selected
    property bool visited: false
    default property alias content: once.delegate

    anchors.fill: parent
    visible: selected
    focus: selected
    onSelectedChanged: visited = true

    Repeater {
        id: once
        model: page.visited ? 1 : 0
    }
}
