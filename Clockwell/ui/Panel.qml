import Clockwell.Ui

// What a card or a dialog is drawn on.
ContinuousRectangle {
    radius: 14
    color: Theme.card
    borderColor: Theme.divider
    borderWidth: 1
}
