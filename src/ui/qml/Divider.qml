import QtQuick

Rectangle {
    width: parent.width
    height: 1
    color: Theme.line
}
