import QtQuick

ActionButton {
    compact: true
    leftPadding: 2 * Theme.unit
    ink: hovered ? Theme.ink : Theme.softInk
    font.family: Theme.light
    font.underline: hovered
}
