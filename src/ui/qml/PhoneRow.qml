import QtQuick
import QtQuick.Layouts

// An iPhone in one of the window's lists; the buttons stand at its end.
RowLayout {
    id: row

    required property string symbol
    required property string name
    required property string status
    property color statusColor: Theme.softInk
    default property alias actions: actionRow.data

    spacing: 3 * Theme.unit
    Layout.fillWidth: true

    Symbol {
        name: row.symbol
        color: Theme.accent
        size: 26
    }
    ColumnLayout {
        spacing: Theme.unit / 2
        Layout.fillWidth: true
        Label {
            objectName: "name"
            text: row.name
            maximumLineCount: 3
            elide: Text.ElideRight
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        SoftLabel {
            objectName: "status"
            text: row.status
            color: row.statusColor
            Layout.fillWidth: true
        }
    }
    RowLayout {
        id: actionRow
        spacing: 2 * Theme.unit
    }
}
