import QtQuick

Row {
    id: signalBars

    required property int bars
    required property string label

    spacing: 3
    height: 16
    Accessible.role: Accessible.Indicator
    Accessible.name: label

    Repeater {
        model: 3
        Rectangle {
            required property int index
            readonly property bool isFilled: index < signalBars.bars
            objectName: "bar"
            anchors.bottom: parent.bottom
            width: 4
            height: 6 + 5 * index
            radius: 1.5
            color: isFilled ? Theme.accent : Theme.edge
        }
    }
}
