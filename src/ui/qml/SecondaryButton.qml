import QtQuick

ActionButton {
    property color tint: Theme.accent
    /// Of what takes something away that comes back: red says so only to who is about to.
    readonly property color quiet: hovered ? Theme.danger : Theme.ink

    fill: Theme.faded(tint, 0.1)
    edge: Theme.faded(tint, 0.35)
    ink: tint
}
