import QtQuick
import Orbinex

// Which computer this phone drives, and how the link stands.
Item {
    id: bar

    readonly property color tint: phone.isConnected ? Theme.success : phone.isOn ? Theme.accent : Theme.softInk

    height: 8 * Theme.unit

    Rectangle {
        anchors.centerIn: parent
        width: 92
        height: 26
        radius: 13
        color: PhoneTheme.notch
    }
    Caption {
        objectName: "computer"
        anchors.verticalCenter: parent.verticalCenter
        x: 3 * Theme.unit
        width: (bar.width - 108) / 2 - x
        text: phone.isConnected ? phone.computer : "iPhone"
        color: Theme.ink
        font.family: Theme.book
    }
    Row {
        anchors.verticalCenter: parent.verticalCenter
        anchors.right: parent.right
        anchors.rightMargin: 3 * Theme.unit
        spacing: 1.5 * Theme.unit
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 7
            height: 7
            radius: 3.5
            color: bar.tint
        }
        Caption {
            objectName: "link"
            anchors.verticalCenter: parent.verticalCenter
            text: phone.linkWord
            color: bar.tint
        }
    }
}
