import QtQuick

// Shows where the keyboard is.
Rectangle {
    required property bool shown

    anchors.fill: parent
    anchors.margins: -3
    radius: parent.radius + 3
    visible: shown
    color: "transparent"
    border.color: Theme.accent
    border.width: 2
}
