import QtQuick
import QtQuick.Layouts

GlassCard {
    objectName: "inputControlCard"
    edge: Theme.faded(Theme.warning, 0.35)

    RowLayout {
        Layout.fillWidth: true
        spacing: 5 * Theme.unit

        Symbol {
            name: "hand.raised.fill"
            color: Theme.warning
            size: 32
            Layout.alignment: Qt.AlignTop
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2 * Theme.unit
            SectionLabel {
                objectName: "inputTitle"
                text: texts.inputTitle
                Layout.fillWidth: true
            }
            SoftLabel {
                objectName: "inputText"
                text: texts.inputText
                Layout.fillWidth: true
            }
            SoftLabel {
                objectName: "inputExplanation"
                text: app.settings.inputExplanation
                visible: text !== ""
                color: Theme.warning
                Layout.fillWidth: true
            }
            RowLayout {
                Layout.topMargin: 2 * Theme.unit
                spacing: 3 * Theme.unit
                PrimaryButton {
                    objectName: "allowAccess"
                    text: texts.allowAccess
                    onClicked: app.settings.allowInput()
                }
                LinkButton {
                    objectName: "openSettings"
                    text: texts.openSettings
                    onClicked: app.settings.openInputSettings()
                }
            }
        }
    }
}
