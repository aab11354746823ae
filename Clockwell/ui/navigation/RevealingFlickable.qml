import QtQuick

// Scrolls by the least amount so that what has the keyboard's focus stays in view, also when the view shrinks for an
// on-screen keyboard, and so that what is revealed comes into view.
Flickable {
    id: root

    readonly property Item focused: Window.activeFocusItem
    readonly property real margin: 16 // to keep free above and below

    function reveal(item: Item) {
        let ancestor = item;
        while (ancestor && ancestor !== contentItem)
            ancestor = ancestor.parent;
        if (!ancestor)
            return;
        const area = item.mapToItem(contentItem, 0, 0, item.width, item.height);
        // Both edges in view where both fit; else the lower one, which is where the text is typed.
        const y = Math.max(Math.min(area.top - margin, contentY), area.bottom + margin - height);
        contentY = Math.max(0, Math.min(y, contentHeight - height));
    }

    onFocusedChanged: reveal(focused)
    onHeightChanged: reveal(focused)
}
