import QtQuick

ActionButton {
    compact: true
    leftPadding: 2 * Theme.unit
    ink: Theme.accent
    font.family: Theme.light
    font.underline: hovered
}
