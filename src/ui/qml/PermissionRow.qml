import QtQuick

Line {
    id: row

    required property string symbol
    required property string title
    required property bool isSatisfied
    /// While it is not satisfied.
    required property string missing
    required property string actionText
    signal acted()

    minimumHeight: 10 * Theme.unit
    leading: Symbol {
        name: row.symbol
        color: Theme.accent
        size: Theme.symbolSize
    }
    Label {
        text: row.title
        width: parent.width
    }
    Row {
        spacing: 1.5 * Theme.unit
        Symbol {
            objectName: "satisfied"
            anchors.verticalCenter: parent.verticalCenter
            name: "checkmark.circle.fill"
            color: Theme.success
            size: 15
            visible: row.isSatisfied
        }
        SoftLabel {
            objectName: "state"
            text: row.isSatisfied ? texts.allowed : row.missing
            color: row.isSatisfied ? Theme.success : Theme.warning
        }
    }
    trailing: SecondaryButton {
        objectName: "action"
        text: row.actionText
        compact: true
        visible: !row.isSatisfied
        Accessible.description: row.title
        onClicked: row.acted()
    }
}
