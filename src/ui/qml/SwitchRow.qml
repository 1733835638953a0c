import QtQuick
import QtQuick.Layouts

RowLayout {
    id: row

    required property string title
    property string subtitle: ""
    required property bool value
    signal wanted(bool on)

    spacing: Theme.gap
    Layout.fillWidth: true

    ColumnLayout {
        spacing: Theme.unit
        Layout.fillWidth: true
        Label {
            text: row.title
            Layout.fillWidth: true
        }
        SoftLabel {
            text: row.subtitle
            visible: text !== ""
            Layout.fillWidth: true
        }
    }
    Toggle {
        objectName: "switch"
        label: row.title
        value: row.value
        onWanted: on => row.wanted(on)
        Accessible.description: row.subtitle
    }
}
