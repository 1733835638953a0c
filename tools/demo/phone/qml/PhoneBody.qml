import QtQuick
import Orbinex

// Frame and screen. What is on the screen stands in one column, in order of how often it is looked at.
Item {
    id: body

    Rectangle {
        anchors.fill: parent
        anchors.margins: 3 * Theme.unit
        radius: 56
        color: PhoneTheme.body
        border.color: Theme.popupEdge
        border.width: 2

        Rectangle {
            anchors.fill: parent
            anchors.margins: 8
            radius: 48
            gradient: Gradient {
                GradientStop { position: 0; color: PhoneTheme.screenTop }
                GradientStop { position: 0.5; color: Theme.background }
                GradientStop { position: 1; color: PhoneTheme.screenFoot }
            }
        }
    }
    StatusBar {
        x: 9 * Theme.unit
        y: 8 * Theme.unit
        width: body.width - 2 * x
    }
    Column {
        x: 8 * Theme.unit
        y: 19 * Theme.unit
        width: body.width - 2 * x
        spacing: PhoneTheme.spacing

        Transport { width: parent.width }
        Mixer { width: parent.width }
        Spectrum { width: parent.width }
        TouchArea {
            width: parent.width
            height: 49 * Theme.unit
        }
        KeyField { width: parent.width }
    }
    // Where the phone is wiped from.
    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        y: body.height - 7 * Theme.unit
        width: 132
        height: 5
        radius: 2.5
        color: Theme.idle
    }
}
