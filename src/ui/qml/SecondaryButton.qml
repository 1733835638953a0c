import QtQuick

ActionButton {
    property color tint: Theme.accent

    fill: Theme.faded(tint, 0.1)
    edge: Theme.faded(tint, 0.35)
    ink: tint
}
