import QtQuick

// Opening takes at least as long as a second tap, which belongs to what was tapped before.
PauseAnimation {
    duration: 250
}
