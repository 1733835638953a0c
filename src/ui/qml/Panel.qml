import QtQuick
import QtQuick.Layouts

// The small window at the tray icon.
Window {
    id: panel
    objectName: "panel"

    title: texts.orbinex
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    width: 340
    height: Math.min(page.implicitHeight + 2 * page.y, Screen.desktopAvailableHeight - 4 * Theme.unit)
    color: Theme.background

    Shortcut {
        sequences: [StandardKey.Open]
        onActivated: app.openMainWindow()
    }
    Shortcut {
        sequences: ["Escape", StandardKey.Close]
        onActivated: panel.hide()
    }
    Shortcut {
        sequences: [StandardKey.Quit]
        onActivated: app.quit()
    }

    Scroller {
        anchors.fill: parent
        contentHeight: page.implicitHeight + 2 * page.y

        ColumnLayout {
            id: page
            x: 5 * Theme.unit
            y: 4 * Theme.unit
            width: panel.width - 2 * x
            spacing: 3 * Theme.unit

            RowLayout {
                Layout.fillWidth: true
                spacing: 2.5 * Theme.unit
                Symbol {
                    name: "computermouse.fill"
                    color: Theme.accent
                    size: 20
                }
                Label {
                    text: texts.orbinex
                    font.pixelSize: Theme.headingSize
                    wrapMode: Text.NoWrap
                    Accessible.role: Accessible.Heading
                    Layout.fillWidth: true
                }
                Label {
                    objectName: "phaseWord"
                    text: app.connection.word
                    font.pixelSize: Theme.smallSize
                    color: Theme.tint(app.connection.tint)
                    wrapMode: Text.NoWrap
                }
                StatusOrb {
                    objectName: "orb"
                    symbol: app.connection.orbSymbol
                    tint: Theme.tint(app.connection.tint)
                    pulse: app.connection.isPulsing
                    size: 24
                    Layout.margins: 3
                }
            }
            Divider { Layout.fillWidth: true }
            RowLayout {
                Layout.fillWidth: true
                spacing: 3 * Theme.unit
                Label {
                    objectName: "statusLine"
                    text: app.connection.panelStatus
                    maximumLineCount: 3
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                    Layout.minimumHeight: 8 * Theme.unit
                    verticalAlignment: Text.AlignVCenter
                }
                PhaseButton {
                    objectName: "panelAction"
                    phaseAction: app.connection.panelAction
                    text: app.connection.panelActionLabel
                    compact: true
                    tint: app.connection.isConnected ? Theme.danger : Theme.accent
                }
            }
            Divider {
                objectName: "trustedDivider"
                visible: app.phones.trusted.count > 0
                Layout.fillWidth: true
            }
            Repeater {
                model: app.phones.trusted
                PanelPhone {
                    required property string phoneId
                    required property string panelStatus
                    required property bool canDisconnect
                    required property int index

                    objectName: "trusted" + index
                    symbol: "iphone"
                    status: panelStatus
                    statusColor: canDisconnect ? Theme.success : canConnect ? Theme.softInk : Theme.accent
                    onConnectWanted: app.phones.connectTrusted(phoneId)
                }
            }
            Divider {
                objectName: "nearbyDivider"
                visible: app.phones.nearby.count > 0
                Layout.fillWidth: true
            }
            Repeater {
                model: app.phones.nearby
                PanelPhone {
                    required property string phoneId
                    required property int index

                    objectName: "nearby" + index
                    symbol: "iphone.radiowaves.left.and.right"
                    status: texts.newIPhone
                    onConnectWanted: app.phones.connectNearby(phoneId)
                }
            }
            Divider {
                visible: warning.visible
                Layout.fillWidth: true
            }
            RowLayout {
                id: warning
                objectName: "inputWarning"
                visible: !app.settings.isInputAllowed
                spacing: 3 * Theme.unit
                Layout.fillWidth: true
                Symbol {
                    name: "exclamationmark.shield.fill"
                    color: Theme.warning
                    size: 22
                }
                Label {
                    text: texts.inputNotAllowed
                    color: Theme.warning
                    Layout.fillWidth: true
                }
                SecondaryButton {
                    objectName: "allow"
                    text: texts.allow
                    tint: Theme.warning
                    compact: true
                    onClicked: app.settings.allowInput()
                }
            }
            Divider { Layout.fillWidth: true }
            ColumnLayout {
                spacing: 0
                Layout.leftMargin: -2 * Theme.unit
                Layout.rightMargin: -2 * Theme.unit
                Layout.fillWidth: true
                PanelCommand {
                    objectName: "openOrbinex"
                    symbol: "macwindow"
                    text: texts.openOrbinex
                    onClicked: app.openMainWindow()
                }
                PanelCommand {
                    objectName: "quitOrbinex"
                    symbol: "power"
                    text: texts.quitOrbinex
                    onClicked: app.quit()
                }
            }
        }
    }

    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.color: Theme.edge
    }
}
