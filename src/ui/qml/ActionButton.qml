import QtQuick

// What the buttons with a label have in common.
PressButton {
    id: button

    property bool compact: false
    property string symbol: ""
    property color fill: "transparent"
    property color edge: "transparent"
    property color ink: Theme.ink

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: compact ? 8 * Theme.unit : 10 * Theme.unit
    leftPadding: compact ? 3.5 * Theme.unit : 5 * Theme.unit
    rightPadding: leftPadding
    font.family: Theme.book
    font.pixelSize: compact ? Theme.smallSize : Theme.bodySize
    opacity: enabled ? 1 : 0.45

    contentItem: Item {
        implicitWidth: inside.implicitWidth
        implicitHeight: inside.implicitHeight
        Row {
            id: inside
            anchors.centerIn: parent
            spacing: 2 * Theme.unit
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                visible: button.symbol !== ""
                name: button.symbol
                color: button.ink
                size: button.font.pixelSize
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: button.text
                textFormat: Text.PlainText
                font: button.font
                color: button.ink
            }
        }
    }
    background: Rectangle {
        radius: height / 2
        color: button.down ? Qt.darker(button.fill, 1.25) : button.hovered ? Qt.lighter(button.fill, 1.15) : button.fill
        border.color: button.edge
        border.width: 1
        FocusRing { shown: button.visualFocus }
    }
}
