import QtQuick

GlassCard {
    objectName: "inputControlCard"
    edge: Theme.faded(Theme.warning, 0.35)

    Line {
        isLeadingAtTop: true
        middleSpacing: 2 * Theme.unit
        leading: Symbol {
            name: "hand.raised.fill"
            color: Theme.warning
            size: Theme.symbolSize
        }
        SectionLabel {
            objectName: "inputTitle"
            text: texts.inputTitle
            width: parent.width
        }
        SoftLabel {
            objectName: "inputText"
            text: texts.inputText
            width: parent.width
        }
        SoftLabel {
            objectName: "inputExplanation"
            text: app.settings.inputExplanation
            visible: text !== ""
            color: Theme.warning
            width: parent.width
        }
        Flow {
            topPadding: 2 * Theme.unit
            spacing: 3 * Theme.unit
            width: parent.width
            PrimaryButton {
                objectName: "allowAccess"
                text: texts.allowAccess
                onClicked: app.settings.allowInput()
            }
            LinkButton {
                objectName: "openSettings"
                text: texts.openSettings
                height: 10 * Theme.unit
                onClicked: app.settings.openInputSettings()
            }
        }
    }
}
