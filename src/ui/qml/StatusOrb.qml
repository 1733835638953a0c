import QtQuick

// The phase as a symbol in a circle. While something is under way, and only while it is seen, a ring leaves
// it again and again. The ring moves in steps, as every step is drawn by the processor.
Item {
    id: orb

    required property string symbol
    required property color tint
    property real size: 24
    property bool pulse: false

    readonly property bool isSeen: visible && Window.window && Window.window.isExposed

    implicitWidth: size
    implicitHeight: size
    Accessible.ignored: true

    // Not scaled, but drawn anew at every size, which keeps its edge smooth.
    Rectangle {
        id: ring
        objectName: "ring"

        readonly property int steps: 32
        property int step: 0
        // Fast at first.
        readonly property real way: 1 - Math.pow(1 - step / steps, 3)
        readonly property real reach: 1 + 0.45 * way

        anchors.centerIn: parent
        width: orb.size * reach
        height: width
        radius: width / 2
        color: "transparent"
        border.color: orb.tint
        border.width: Math.max(1, orb.size / 40)
        opacity: 0.7 * (1 - way)
        visible: pulsing.running

        Timer {
            id: pulsing
            interval: 1800 / ring.steps
            repeat: true
            running: orb.pulse && orb.isSeen
            onRunningChanged: ring.step = 0
            onTriggered: ring.step = (ring.step + 1) % ring.steps
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
