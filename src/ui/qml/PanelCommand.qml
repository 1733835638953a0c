import QtQuick

// A line of the panel's footer, to be clicked.
PressButton {
    id: command

    required property string symbol

    implicitHeight: 9 * Theme.unit
    leftPadding: 2 * Theme.unit
    rightPadding: 2 * Theme.unit
    font.family: Theme.book
    font.pixelSize: Theme.bodySize
    width: parent.width

    contentItem: Row {
        // The text stands where the names of iPhones do.
        spacing: 3 * Theme.unit
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: command.symbol
            color: Theme.softInk
            size: Theme.symbolSize
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: command.text
            textFormat: Text.PlainText
            font: command.font
            color: Theme.ink
        }
    }
    background: Rectangle {
        radius: 2 * Theme.unit
        color: Theme.faded(Theme.ink, command.down ? 0.12 : command.hovered ? 0.07 : 0)
        FocusRing { shown: command.visualFocus }
    }
}
