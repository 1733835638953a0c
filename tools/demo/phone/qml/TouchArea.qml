import QtQuick
import Orbinex

// The trackpad.
Pane {
    id: pad
    objectName: "trackpad"

    Accessible.role: Accessible.Pane
    Accessible.name: "Trackpad"

    Caption {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 3 * Theme.unit
        text: "drag to point · tap to click · hold to drag · wheel to scroll"
        color: PhoneTheme.hint
    }
    Rectangle {
        id: finger

        readonly property real reach: 11 * Theme.unit

        x: phone.finger.x * pad.width - width / 2
        y: phone.finger.y * pad.height - height / 2
        width: reach
        height: reach
        radius: reach / 2
        color: Theme.faded(Theme.accent, 0.1)
        border.color: Theme.faded(Theme.accent, 0.45)
        opacity: phone.isTouched ? 1 : 0
        Behavior on opacity { NumberAnimation { duration: 2 * Theme.quick } }
        Rectangle {
            anchors.centerIn: parent
            width: 4 * Theme.unit
            height: width
            radius: width / 2
            color: Theme.faded(Theme.accent, 0.7)
        }
    }
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        preventStealing: true
        pressAndHoldInterval: 400
        onPressed: event => {
            forceActiveFocus()
            phone.touch(Qt.point(event.x, event.y), Qt.size(width, height), event.button === Qt.RightButton)
        }
        onPositionChanged: event => phone.moveTouch(Qt.point(event.x, event.y), Qt.size(width, height))
        onPressAndHold: phone.holdTouch()
        onReleased: phone.liftTouch()
        onCanceled: phone.cancelTouch()
        onWheel: event => phone.scroll(event.angleDelta)
    }
}
