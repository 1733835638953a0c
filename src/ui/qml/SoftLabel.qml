import QtQuick

// Secondary text.
Label {
    color: Theme.softInk
    font.family: Theme.light
    font.pixelSize: Theme.smallSize
    leading: 1.28
}
