import QtQuick

GlassCard {
    id: card
    objectName: "connectionCard"
    padding: 8 * Theme.unit
    spacing: 6 * Theme.unit

    /// Something of it can be seen in the window.
    property bool isInView: true
    readonly property bool isWide: width >= 560

    Line {
        gap: 8 * Theme.unit
        middleSpacing: 2 * Theme.unit
        leading: StatusOrb {
            objectName: "orb"
            symbol: app.connection.orbSymbol
            tint: Theme.tint(app.connection.tint)
            pulse: app.connection.isPulsing && card.isInView
            size: 72
        }
        Label {
            objectName: "connectionTitle"
            text: app.connection.windowTitle
            font.pixelSize: Theme.titleSize
            leading: 1.1
            maximumLineCount: 6
            elide: Text.ElideRight
            width: parent.width
            Accessible.role: Accessible.Heading
        }
        // Its line is kept while it has nothing to tell, so that the title stands still.
        SoftLabel {
            objectName: "connectionDetail"
            text: app.connection.windowDetail
            visible: text !== "" || !app.connection.isConnected
            height: Math.max(implicitHeight, lineHeight)
            maximumLineCount: 4
            elide: Text.ElideRight
            width: parent.width
            Accessible.ignored: text === ""
        }
        Line {
            visible: app.connection.isSecuring
            gap: 2 * Theme.unit
            isLeadingAtTop: true
            leading: Symbol {
                name: "lock.shield"
                color: Theme.accent
                size: 18
            }
            SoftLabel {
                objectName: "pairingHint"
                text: texts.pairingHint
                width: parent.width
            }
        }
        trailing: Item {
            id: beside
            visible: card.isWide
            width: action.width
            height: action.height
        }
    }
    Item {
        id: below
        visible: !card.isWide
        width: action.width
        height: action.height
    }

    // One button, beside the title or below it.
    PhaseButton {
        id: action
        objectName: "connectionAction"
        parent: card.isWide ? beside : below
        phaseAction: app.connection.windowAction
        text: app.connection.windowActionLabel
        symbol: app.connection.windowActionSymbol
    }
}
