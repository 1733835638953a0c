import QtQuick
import QtQuick.Layouts

Window {
    id: window
    objectName: "main"

    readonly property bool isWide: page.width >= 640

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
        sequences: [StandardKey.Quit]
        onActivated: app.quit()
    }

    Scroller {
        objectName: "scroller"
        anchors.fill: parent
        contentHeight: page.implicitHeight + 2 * Theme.margin

        ColumnLayout {
            id: page
            x: Math.max(Theme.margin, (parent.width - width) / 2)
            y: Theme.margin
            width: Math.min(window.width - 2 * Theme.margin, 1040)
            spacing: Theme.gap

            Header {
                Layout.fillWidth: true
                Layout.bottomMargin: Theme.unit
            }
            ConnectionCard { Layout.fillWidth: true }
            SetUpGuide {
                visible: !app.connection.isConnected
                Layout.fillWidth: true
            }
            InputControlCard {
                visible: !app.settings.isInputAllowed
                Layout.fillWidth: true
            }
            GridLayout {
                Layout.fillWidth: true
                columns: window.isWide ? 2 : 1
                columnSpacing: Theme.gap
                rowSpacing: Theme.gap

                MyPhones {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1
                }
                NearbyPhones {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1
                }
                PermissionsCard {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1
                }
                GeneralCard {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1
                }
            }
            Footer { Layout.fillWidth: true }
        }
    }

    MessageBox {}
}
