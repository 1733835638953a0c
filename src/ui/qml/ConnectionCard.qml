import QtQuick
import QtQuick.Layouts

GlassCard {
    id: card
    objectName: "connectionCard"
    padding: 8 * Theme.unit

    GridLayout {
        Layout.fillWidth: true
        columns: card.width < 560 ? 2 : 3
        columnSpacing: 7 * Theme.unit
        rowSpacing: Theme.gap

        StatusOrb {
            objectName: "orb"
            symbol: app.connection.orbSymbol
            tint: Theme.tint(app.connection.tint)
            pulse: app.connection.isPulsing
            size: 72
            // Room for the ring.
            Layout.margins: 4
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2 * Theme.unit
            Label {
                objectName: "connectionTitle"
                text: app.connection.windowTitle
                font.pixelSize: Theme.titleSize
                maximumLineCount: 3
                elide: Text.ElideRight
                lineHeight: 1.02
                Accessible.role: Accessible.Heading
                Layout.fillWidth: true
            }
            RowLayout {
                visible: app.connection.isSecuring
                spacing: 2 * Theme.unit
                Symbol {
                    name: "lock.shield"
                    color: Theme.accent
                    size: 18
                    Layout.alignment: Qt.AlignTop
                }
                SoftLabel {
                    objectName: "pairingHint"
                    text: texts.pairingHint
                    Layout.fillWidth: true
                }
            }
        }
        PhaseButton {
            objectName: "connectionAction"
            phaseAction: app.connection.windowAction
            text: app.connection.windowActionLabel
            symbol: text === texts.searchAgain ? "arrow.clockwise" : ""
            tint: app.connection.isConnected ? Theme.danger : Theme.accent
            Layout.columnSpan: card.width < 560 ? 2 : 1
        }
    }
}
