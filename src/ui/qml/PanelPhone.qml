import QtQuick
import QtQuick.Layouts

RowLayout {
    id: row

    required property string symbol
    required property string name
    required property string status
    property color statusColor: Theme.softInk
    property bool canConnect: true
    signal connectWanted()

    spacing: 3 * Theme.unit
    Layout.fillWidth: true

    Symbol {
        name: row.symbol
        color: Theme.accent
        size: 22
    }
    ColumnLayout {
        spacing: 0
        Layout.fillWidth: true
        Label {
            objectName: "name"
            text: row.name
            maximumLineCount: 2
            elide: Text.ElideRight
            Layout.fillWidth: true
        }
        SoftLabel {
            objectName: "status"
            text: row.status
            color: row.statusColor
            Layout.fillWidth: true
        }
    }
    BorderlessButton {
        objectName: "connect"
        text: texts.connect
        visible: row.canConnect
        Accessible.description: row.name
        onClicked: row.connectWanted()
    }
}
