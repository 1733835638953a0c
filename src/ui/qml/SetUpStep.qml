import QtQuick

Column {
    id: step

    required property int number
    required property string title
    required property string text

    spacing: 2 * Theme.unit

    Rectangle {
        width: 8 * Theme.unit
        height: width
        radius: height / 2
        color: Theme.faded(Theme.accent, 0.1)
        border.color: Theme.faded(Theme.accent, 0.5)
        Label {
            anchors.centerIn: parent
            text: step.number
            color: Theme.accent
            font.pixelSize: Theme.smallSize
        }
    }
    Label {
        objectName: "stepTitle"
        text: step.title
        topPadding: lead + Theme.unit
        width: parent.width
    }
    SoftLabel {
        objectName: "stepText"
        text: step.text
        width: parent.width
    }
}
