import Clockwell.Ui

// What an alert or a dialog is drawn on.
ContinuousRectangle {
    radius: 14
    color: Theme.card
    borderColor: Theme.divider
    borderWidth: 1
}
