import QtQuick

Window {
    id: window
    objectName: "main"

    readonly property bool isWide: page.width >= 700
    /// Something of the window may be on a screen; told from outside.
    property bool isExposed: false

    title: texts.orbinex
    width: 860
    height: 720
    minimumWidth: 440
    minimumHeight: 400
    color: Theme.windowBackground

    Shortcut {
        sequences: [StandardKey.Open]
        onActivated: app.openMainWindow()
    }
    Shortcut {
        sequences: [StandardKey.Close]
        onActivated: window.close()
    }
    Shortcut {
        // The standard key is none on some desktops.
        sequence: "Ctrl+Q"
        onActivated: app.quit()
    }

    Scroller {
        id: scroller
        objectName: "scroller"
        anchors.fill: parent
        contentHeight: page.height + 2 * Theme.margin

        Column {
            id: page
            x: Math.max(Theme.margin, (parent.width - width) / 2)
            y: Theme.margin
            width: Math.min(window.width - 2 * Theme.margin, 1040)
            spacing: Theme.gap

            Header {}
            ConnectionCard {
                width: parent.width
                isInView: page.y + y + height > scroller.contentY
            }
            SetUpGuide {
                visible: !app.connection.isConnected
                width: parent.width
            }
            InputControlCard {
                visible: !app.settings.isInputAllowed
                width: parent.width
            }
            Flow {
                id: cards

                readonly property real cardWidth: window.isWide ? Math.floor((width - spacing) / 2) : width
                function sharedHeight(card, neighbour) {
                    return window.isWide ? Math.max(card.implicitHeight, neighbour.implicitHeight) : card.implicitHeight
                }

                spacing: Theme.gap
                width: parent.width

                MyPhones {
                    id: mine
                    width: cards.cardWidth
                    height: cards.sharedHeight(mine, nearby)
                }
                NearbyPhones {
                    id: nearby
                    width: cards.cardWidth
                    height: cards.sharedHeight(nearby, mine)
                }
                PermissionsCard {
                    id: permissions
                    width: cards.cardWidth
                    height: cards.sharedHeight(permissions, general)
                }
                GeneralCard {
                    id: general
                    width: cards.cardWidth
                    height: cards.sharedHeight(general, permissions)
                }
            }
            Footer { width: parent.width }
        }
    }

    MessageBox {}
}
