import QtQuick

// The small window at the tray icon.
Window {
    id: panel
    objectName: "panel"

    /// Something of the window may be on a screen; told from outside.
    property bool isExposed: false
    /// The height of the screen that it is on; told from outside.
    property int availableHeight: 480
    readonly property int cornerRadius: Theme.cornerRadius
    /// The person has asked for input control, and was not given it.
    property bool isPermissionAsked: false

    title: texts.orbinex
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    width: 340
    height: Math.min(page.height + 2 * page.y, availableHeight - 4 * Theme.unit)
    color: Theme.background
    onVisibleChanged: isPermissionAsked = false

    Shortcut {
        sequences: [StandardKey.Open]
        onActivated: app.openMainWindow()
    }
    Shortcut {
        sequences: ["Escape", StandardKey.Close]
        onActivated: panel.hide()
    }
    Shortcut {
        // The standard key is none on some desktops.
        sequence: "Ctrl+Q"
        onActivated: app.quit()
    }

    Scroller {
        anchors.fill: parent
        contentHeight: page.height + 2 * page.y

        Column {
            id: page
            x: 5 * Theme.unit
            y: 4 * Theme.unit
            width: panel.width - 2 * x
            spacing: 3 * Theme.unit

            Line {
                leading: Symbol {
                    name: "computermouse.fill"
                    color: Theme.accent
                    size: Theme.symbolSize
                }
                Label {
                    text: texts.orbinex
                    font.pixelSize: Theme.headingSize
                    wrapMode: Text.NoWrap
                    Accessible.role: Accessible.Heading
                }
                trailing: [
                    Label {
                        objectName: "phaseWord"
                        anchors.verticalCenter: parent.verticalCenter
                        text: app.connection.word
                        font.pixelSize: Theme.smallSize
                        color: Theme.tint(app.connection.tint)
                        wrapMode: Text.NoWrap
                    },
                    StatusOrb {
                        objectName: "orb"
                        symbol: app.connection.orbSymbol
                        tint: Theme.tint(app.connection.tint)
                        pulse: app.connection.isPulsing
                        size: 26
                    }
                ]
            }
            Divider {}
            Line {
                minimumHeight: 8 * Theme.unit
                Label {
                    objectName: "statusLine"
                    text: app.connection.panelStatus
                    maximumLineCount: 5
                    elide: Text.ElideRight
                    width: parent.width
                }
                trailing: PhaseButton {
                    objectName: "panelAction"
                    phaseAction: app.connection.panelAction
                    text: app.connection.panelActionLabel
                    compact: true
                }
            }
            Divider {
                objectName: "trustedDivider"
                visible: app.phones.trusted.count > 0
            }
            Rows {
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
            }
            Rows {
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
            }
            Line {
                id: warning
                objectName: "inputWarning"
                visible: !app.settings.isInputAllowed
                leading: Symbol {
                    name: "exclamationmark.shield.fill"
                    color: Theme.warning
                    size: Theme.symbolSize
                }
                Label {
                    text: texts.inputNotAllowed
                    color: Theme.warning
                    width: parent.width
                }
                SoftLabel {
                    objectName: "inputExplanation"
                    text: app.settings.inputExplanation
                    visible: panel.isPermissionAsked && text !== ""
                    width: parent.width
                }
                trailing: SecondaryButton {
                    objectName: "allow"
                    text: texts.allow
                    tint: Theme.warning
                    compact: true
                    onClicked: {
                        app.settings.allowInput()
                        panel.isPermissionAsked = true
                    }
                }
            }
            Divider {}
            Column {
                x: -2 * Theme.unit
                width: page.width + 4 * Theme.unit
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
        radius: panel.cornerRadius
        color: "transparent"
        border.color: Theme.edge
    }
}
