import QtQuick
import Orbinex

// Where the playhead is, and the keys that move it.
Pane {
    id: transport

    height: 38 * Theme.unit

    Caption {
        objectName: "timeline"
        x: 4 * Theme.unit
        y: 3 * Theme.unit
        width: parent.width / 2 - x
        text: phone.timeline
    }
    Caption {
        objectName: "page"
        anchors.right: parent.right
        anchors.rightMargin: 4 * Theme.unit
        y: 3 * Theme.unit
        text: phone.page
        color: Theme.accent
        font.letterSpacing: 1.5
    }
    Digits {
        objectName: "timecode"
        anchors.horizontalCenter: parent.horizontalCenter
        y: 8.5 * Theme.unit
        text: phone.timecode
    }
    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 22.5 * Theme.unit
        spacing: 3 * Theme.unit

        RoundButton {
            objectName: "stepBackward"
            anchors.verticalCenter: parent.verticalCenter
            symbol: "frame.backward"
            label: "Frame back"
            onTapped: phone.step(false)
        }
        RoundButton {
            objectName: "playBackward"
            anchors.verticalCenter: parent.verticalCenter
            symbol: "backward.fill"
            label: "Play backward"
            onTapped: phone.playBackward()
        }
        RoundButton {
            objectName: "play"
            size: 12 * Theme.unit
            isMain: true
            symbol: phone.isPlaying ? "pause.fill" : "play.fill"
            label: phone.isPlaying ? "Pause" : "Play"
            onTapped: phone.playOrPause()
        }
        RoundButton {
            objectName: "playFaster"
            anchors.verticalCenter: parent.verticalCenter
            symbol: "forward.fill"
            label: "Play faster"
            onTapped: phone.playFaster()
        }
        RoundButton {
            objectName: "stepForward"
            anchors.verticalCenter: parent.verticalCenter
            symbol: "frame.forward"
            label: "Frame forward"
            onTapped: phone.step(true)
        }
    }
    Caption {
        objectName: "speed"
        anchors.right: parent.right
        anchors.rightMargin: 4 * Theme.unit
        y: 26.5 * Theme.unit
        text: phone.speed
        color: phone.isPlaying ? Theme.success : Theme.softInk
    }
}
