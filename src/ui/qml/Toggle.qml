import QtQuick
import QtQuick.Templates as T

// A switch that always shows what `value` says: turning it only asks.
T.Switch {
    id: toggle

    required property bool value
    required property string label
    signal wanted(bool on)

    implicitWidth: 12 * Theme.unit
    implicitHeight: 7 * Theme.unit
    focusPolicy: Qt.StrongFocus
    checked: value
    Accessible.name: label
    onToggled: {
        wanted(checked)
        checked = Qt.binding(() => toggle.value)
    }
    Accessible.onPressAction: wanted(!value)
    Accessible.onToggleAction: wanted(!value)
    Keys.onReturnPressed: event => turnedBy(event)
    Keys.onEnterPressed: event => turnedBy(event)
    Keys.onSpacePressed: event => event.accepted = event.isAutoRepeat
    Keys.onReleased: event => event.accepted = event.isAutoRepeat

    function turnedBy(event) {
        if (!event.isAutoRepeat) wanted(!value)
    }

    HoverHandler { cursorShape: Qt.PointingHandCursor }

    indicator: Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: toggle.checked ? Theme.primary : Theme.neutral
        border.color: toggle.checked ? Theme.primary : Theme.popupEdge
        Behavior on color { ColorAnimation { duration: Theme.quick } }

        Rectangle {
            x: toggle.checked ? parent.width - width - 3 : 3
            anchors.verticalCenter: parent.verticalCenter
            width: parent.height - 6
            height: width
            radius: height / 2
            color: toggle.checked ? Theme.ink : Theme.softInk
            Behavior on x { NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic } }
        }
        FocusRing { shown: toggle.visualFocus }
    }
}
