import QtQuick
import Orbinex

Rectangle {
    id: button

    required property string letter
    required property string label
    required property color tint
    required property bool isOn
    signal tapped()

    width: 6 * Theme.unit
    height: 6 * Theme.unit
    radius: 1.5 * Theme.unit
    color: isOn ? tint : Theme.faded(Theme.ink, area.pressed ? 0.16 : 0.06)
    Accessible.role: Accessible.CheckBox
    Accessible.name: label
    Accessible.checked: isOn
    Accessible.onPressAction: tapped()

    Text {
        anchors.centerIn: parent
        text: button.letter
        color: button.isOn ? Theme.raised : Theme.softInk
        font.family: Theme.book
        font.pixelSize: PhoneTheme.captionSize
    }
    MouseArea {
        id: area
        anchors.fill: parent
        cursorShape: Qt.PointingHandCursor
        onClicked: button.tapped()
    }
}
