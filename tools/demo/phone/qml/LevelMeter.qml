import QtQuick
import Orbinex

// A level from 0 to 1: the colour tells how near to the top it is; the line where it was lately.
Rectangle {
    id: meter

    required property real level
    required property real hold
    required property bool isClipping

    radius: 2
    color: PhoneTheme.well
    Accessible.ignored: true

    Item {
        anchors.bottom: parent.bottom
        width: parent.width
        height: Math.round(meter.height * meter.level)
        clip: true
        Rectangle {
            anchors.bottom: parent.bottom
            width: meter.width
            height: meter.height
            radius: 2
            gradient: Gradient {
                GradientStop { position: 0; color: Theme.danger }
                GradientStop { position: 0.14; color: Theme.warning }
                GradientStop { position: 0.4; color: Theme.success }
                GradientStop { position: 1; color: PhoneTheme.levelFoot }
            }
        }
    }
    Rectangle {
        y: Math.round((meter.height - 2) * (1 - meter.hold))
        width: parent.width
        height: 2
        visible: meter.hold > 0.02
        color: Theme.ink
    }
    Rectangle {
        y: -5
        width: parent.width
        height: 3
        radius: 1.5
        color: meter.isClipping ? Theme.danger : PhoneTheme.well
    }
}
