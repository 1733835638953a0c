import QtQuick

ActionButton {
    compact: true
    leftPadding: 2 * Theme.unit
    ink: Theme.accent
    fill: Theme.faded(Theme.accent, hovered ? 0.1 : 0)
}
