import QtQuick

// The phase as a symbol in a circle. While something is under way, and only while it is seen, a ring leaves
// it again and again.
Item {
    id: orb

    required property string symbol
    required property color tint
    property real size: 24
    property bool pulse: false

    readonly property bool isSeen: visible && Window.window && Window.visibility !== Window.Hidden
                                   && Window.visibility !== Window.Minimized

    implicitWidth: size
    implicitHeight: size
    Accessible.ignored: true

    // Not scaled, but drawn anew at every size, which keeps its edge smooth.
    Rectangle {
        id: ring
        objectName: "ring"

        property real reach: 1

        anchors.centerIn: parent
        width: orb.size * reach
        height: width
        radius: width / 2
        color: "transparent"
        border.color: orb.tint
        border.width: Math.max(1, orb.size / 40)
        visible: pulsing.running

        ParallelAnimation {
            id: pulsing
            running: orb.pulse && orb.isSeen
            loops: Animation.Infinite
            NumberAnimation {
                target: ring; property: "reach"
                from: 1.0; to: 1.45; duration: 1800; easing.type: Easing.OutCubic
            }
            NumberAnimation {
                target: ring; property: "opacity"
                from: 0.7; to: 0; duration: 1800; easing.type: Easing.OutCubic
            }
        }
    }
    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: Theme.faded(orb.tint, 0.14)
        border.color: Theme.faded(orb.tint, 0.55)
        border.width: Math.max(1, orb.size / 48)
    }
    Symbol {
        anchors.centerIn: parent
        name: orb.symbol
        color: orb.tint
        size: orb.size * 0.56
    }
}
