import QtQuick
import Orbinex

Rectangle {
    id: button

    required property string symbol
    required property string label
    property real size: 9 * Theme.unit
    property bool isMain: false
    signal tapped()

    width: size
    height: size
    radius: size / 2
    color: isMain ? (area.pressed ? Qt.darker(Theme.primary, 1.25) : Theme.primary)
                  : Theme.faded(Theme.ink, area.pressed ? 0.16 : area.containsMouse ? 0.09 : 0.05)
    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.onPressAction: tapped()

    Symbol {
        anchors.centerIn: parent
        name: button.symbol
        color: button.isMain ? Theme.primaryInk : Theme.ink
        size: button.size * 0.46
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: button.tapped()
    }
}
