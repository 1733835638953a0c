import QtQuick
import QtQuick.Layouts

// A pane of dark glass: lighter where light would fall on it.
Rectangle {
    id: card

    default property alias content: column.data
    property int padding: 6 * Theme.unit
    property color edge: Theme.edge
    property alias spacing: column.spacing

    radius: Theme.cornerRadius
    implicitWidth: column.implicitWidth + 2 * padding
    implicitHeight: column.implicitHeight + 2 * padding
    border.color: edge
    border.width: 1
    gradient: Gradient {
        GradientStop { position: 0; color: "#1A1E26" }
        GradientStop { position: 1; color: Theme.raised }
    }

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: card.padding
        spacing: Theme.gap
    }
}
