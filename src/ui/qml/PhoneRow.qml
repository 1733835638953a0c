import QtQuick

// An iPhone in one of the window's lists; the buttons stand at its end.
Line {
    id: row

    required property string symbol
    required property string name
    required property string status
    property color statusColor: Theme.softInk
    /// Beside the status; none by itself.
    property Component badge: null

    leading: Symbol {
        name: row.symbol
        color: Theme.accent
        size: Theme.symbolSize
    }
    Label {
        objectName: "name"
        text: row.name
        maximumLineCount: 5
        elide: Text.ElideRight
        width: parent.width
    }
    Flow {
        width: parent.width
        spacing: 2 * Theme.unit
        SoftLabel {
            objectName: "status"
            text: row.status
            color: row.statusColor
            width: Math.min(implicitWidth, parent.width)
        }
        Loader {
            sourceComponent: row.badge
            visible: row.badge !== null
        }
    }
}
