import QtQuick
import QtQuick.Layouts

ColumnLayout {
    id: step

    required property int number
    required property string title
    required property string text

    spacing: 2 * Theme.unit
    Layout.fillWidth: true
    Layout.alignment: Qt.AlignTop
    Layout.preferredWidth: 1

    Rectangle {
        implicitWidth: 8 * Theme.unit
        implicitHeight: 8 * Theme.unit
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
        Layout.fillWidth: true
        Layout.topMargin: Theme.unit
    }
    SoftLabel {
        objectName: "stepText"
        text: step.text
        Layout.fillWidth: true
    }
}
