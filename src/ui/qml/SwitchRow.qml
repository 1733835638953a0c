import QtQuick

Line {
    id: row

    required property string title
    property string subtitle: ""
    required property bool value
    signal wanted(bool on)

    gap: Theme.gap
    Label {
        text: row.title
        width: parent.width
    }
    SoftLabel {
        objectName: "subtitle"
        text: row.subtitle
        visible: text !== ""
        width: parent.width
    }
    trailing: Toggle {
        objectName: "switch"
        label: row.title
        value: row.value
        onWanted: on => row.wanted(on)
        Accessible.description: row.subtitle
    }
}
