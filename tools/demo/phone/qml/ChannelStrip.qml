import QtQuick
import Orbinex

// One track of the mixer: its name in its colour, mute and solo, the fader beside the meter, the volume.
Item {
    id: strip

    required property int trackIndex
    required property string name
    required property bool isMuted
    required property bool isSolo
    required property bool isSelected
    required property real fader
    required property string volume
    required property real level
    required property real hold
    required property bool isClipping

    readonly property color tint: PhoneTheme.trackColour(trackIndex)

    objectName: "strip" + trackIndex

    Rectangle {
        anchors.fill: parent
        anchors.leftMargin: 2
        anchors.rightMargin: 2
        radius: 2.5 * Theme.unit
        color: Theme.faded(strip.tint, strip.isSelected ? 0.09 : 0)
    }
    MouseArea {
        width: parent.width
        height: 9 * Theme.unit
        onClicked: phone.select(strip.trackIndex)
    }
    Caption {
        objectName: "name"
        y: 2 * Theme.unit
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        leftPadding: 3
        rightPadding: 3
        text: strip.name
        color: strip.isSelected ? Theme.ink : Theme.softInk
    }
    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 7 * Theme.unit
        width: 5 * Theme.unit
        height: 3
        radius: 1.5
        color: strip.tint
    }
    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 10 * Theme.unit
        spacing: Theme.unit
        LetterButton {
            objectName: "mute"
            letter: "M"
            label: "Mute " + strip.name
            tint: Theme.warning
            isOn: strip.isMuted
            onTapped: phone.setMuted(strip.trackIndex, !strip.isMuted)
        }
        LetterButton {
            objectName: "solo"
            letter: "S"
            label: "Solo " + strip.name
            tint: Theme.accent
            isOn: strip.isSolo
            visible: strip.trackIndex > 0
            onTapped: phone.setSolo(strip.trackIndex, !strip.isSolo)
        }
    }
    Fader {
        id: fader
        objectName: "fader"
        x: strip.width / 2 - 5.5 * Theme.unit
        y: 18 * Theme.unit
        width: 8 * Theme.unit
        height: strip.height - y - 8 * Theme.unit
        value: strip.fader
        tint: strip.tint
        label: strip.name
        opacity: strip.isMuted ? 0.55 : 1
        onWanted: place => phone.moveFader(strip.trackIndex, place)
    }
    LevelMeter {
        objectName: "meter"
        x: strip.width / 2 + 3.5 * Theme.unit
        y: fader.y
        width: 7
        height: fader.height
        level: strip.level
        hold: strip.hold
        isClipping: strip.isClipping
    }
    Caption {
        objectName: "volume"
        y: strip.height - 6 * Theme.unit
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        text: strip.volume
        color: Theme.ink
    }
}
