import QtQuick

ActionButton {
    fill: Theme.primary
    edge: Theme.primary
    ink: Theme.primaryInk
}
