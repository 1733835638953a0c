import QtQuick
import Orbinex

// A fader that asks to be moved by dragging, by the wheel, or to 0 dB by a double tap. `value` is from 0 at the
// bottom to 1.
Item {
    id: fader

    required property real value
    required property color tint
    required property string label
    readonly property real zero: 0.78
    readonly property int capHeight: 5 * Theme.unit
    readonly property real travel: height - capHeight
    signal wanted(real place)

    function ask(place) {
        wanted(Math.max(0, Math.min(1, place)))
    }

    Accessible.role: Accessible.Slider
    Accessible.name: label

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        y: fader.capHeight / 2
        width: 4
        height: fader.travel
        radius: 2
        color: PhoneTheme.well
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: parent.height * fader.value
            radius: 2
            color: Theme.faded(fader.tint, 0.5)
        }
    }
    // Where 0 dB is.
    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        y: fader.capHeight / 2 + fader.travel * (1 - fader.zero)
        width: 4 * Theme.unit
        height: 1
        color: Theme.idle
    }
    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        y: Math.round(fader.travel * (1 - fader.value))
        width: 6.5 * Theme.unit
        height: fader.capHeight
        radius: 5
        border.color: PhoneTheme.well
        gradient: Gradient {
            GradientStop { position: 0; color: area.pressed ? Theme.ink : PhoneTheme.cap }
            GradientStop { position: 1; color: PhoneTheme.capFoot }
        }
        Rectangle {
            anchors.centerIn: parent
            width: parent.width - 6
            height: 2
            color: PhoneTheme.capLine
        }
    }
    MouseArea {
        id: area

        property real grip: 0

        anchors.fill: parent
        preventStealing: true
        cursorShape: Qt.SizeVerCursor
        onPressed: event => grip = event.y + fader.travel * fader.value
        onPositionChanged: event => fader.ask((grip - event.y) / fader.travel)
        onDoubleClicked: fader.ask(fader.zero)
        onWheel: event => fader.ask(fader.value + event.angleDelta.y / 120 * 0.02)
    }
}
