import QtQuick

// A pane of dark glass: lighter where light would fall on it. What is in it stands in a column.
Rectangle {
    id: card

    default property alias content: column.data
    property int padding: 6 * Theme.unit
    property color edge: Theme.edge
    property alias spacing: column.spacing

    radius: Theme.cornerRadius
    implicitHeight: column.height + 2 * padding
    border.color: edge
    border.width: 1
    gradient: Gradient {
        GradientStop { position: 0; color: Theme.glass }
        GradientStop { position: 1; color: Theme.raised }
    }

    Column {
        id: column
        x: card.padding
        y: card.padding
        width: card.width - 2 * card.padding
        spacing: Theme.gap
    }
}
