import QtQuick
import QtQuick.Layouts

RowLayout {
    id: row

    required property string symbol
    required property string title
    required property bool isSatisfied
    /// While it is not satisfied.
    required property string missing
    required property string actionText
    signal acted()

    spacing: 3 * Theme.unit
    Layout.fillWidth: true
    Layout.minimumHeight: 10 * Theme.unit

    Symbol {
        name: row.symbol
        color: Theme.accent
        size: 24
    }
    ColumnLayout {
        spacing: Theme.unit / 2
        Layout.fillWidth: true
        Label {
            text: row.title
            Layout.fillWidth: true
        }
        RowLayout {
            spacing: 1.5 * Theme.unit
            Symbol {
                objectName: "satisfied"
                name: "checkmark.circle.fill"
                color: Theme.success
                size: 15
                visible: row.isSatisfied
            }
            SoftLabel {
                objectName: "state"
                text: row.isSatisfied ? texts.allowed : row.missing
                color: row.isSatisfied ? Theme.success : Theme.warning
                Layout.fillWidth: true
            }
        }
    }
    SecondaryButton {
        objectName: "action"
        text: row.actionText
        compact: true
        visible: !row.isSatisfied
        Accessible.description: row.title
        onClicked: row.acted()
    }
}
