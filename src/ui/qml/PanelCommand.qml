import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T

// A line of the panel's footer, to be clicked.
T.Button {
    id: command

    required property string symbol

    implicitHeight: 9 * Theme.unit
    leftPadding: 2 * Theme.unit
    rightPadding: 2 * Theme.unit
    font.family: Theme.book
    font.pixelSize: Theme.bodySize
    focusPolicy: Qt.StrongFocus
    Layout.fillWidth: true
    Accessible.name: text
    Keys.onReturnPressed: click()
    Keys.onEnterPressed: click()

    HoverHandler { cursorShape: Qt.PointingHandCursor }

    contentItem: RowLayout {
        spacing: 3 * Theme.unit
        Symbol {
            name: command.symbol
            color: Theme.softInk
            size: 20
        }
        Text {
            text: command.text
            textFormat: Text.PlainText
            font: command.font
            color: Theme.ink
            Layout.fillWidth: true
        }
    }
    background: Rectangle {
        radius: 2 * Theme.unit
        color: Theme.faded(Theme.ink, command.down ? 0.12 : command.hovered ? 0.07 : 0)
        border.color: Theme.accent
        border.width: command.visualFocus ? 2 : 0
    }
}
