import QtQuick

Rectangle {
    implicitHeight: 1
    color: Theme.line
}
