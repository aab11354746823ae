import QtQuick
import Clockwell.Ui

// Declared in a message: brings it into view in the RevealingFlickable around it, once for each new `text`, when it has
// been laid out. The focus stays where it is.
Item {
    id: root

    required property string text
    property bool pending: false

    onTextChanged: pending = text.length > 0

    Connections {
        target: root.Window.window
        enabled: root.pending && root.visible

        function onAfterAnimating() {
            let view = root.parent;
            while (view && !(view instanceof RevealingFlickable))
                view = view.parent;
            view?.reveal(root.parent);
            root.pending = false;
        }
    }
}
