import QtQuick

Line {
    id: row

    required property string symbol
    required property string name
    required property string status
    property color statusColor: Theme.softInk
    required property bool canConnect
    signal connectWanted()

    middleSpacing: 0
    leading: Symbol {
        name: row.symbol
        color: Theme.accent
        size: Theme.symbolSize
    }
    Label {
        objectName: "name"
        text: row.name
        maximumLineCount: 4
        elide: Text.ElideRight
        width: parent.width
    }
    SoftLabel {
        objectName: "status"
        text: row.status
        color: row.statusColor
        width: parent.width
    }
    trailing: BorderlessButton {
        objectName: "connect"
        text: texts.connect
        visible: row.canConnect
        Accessible.description: row.name
        onClicked: row.connectWanted()
    }
}
