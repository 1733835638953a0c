import QtQuick

GlassCard {
    objectName: "general"
    spacing: 5 * Theme.unit

    SectionLabel {
        text: texts.general
        width: parent.width
    }
    SwitchRow {
        objectName: "openAtLogin"
        title: texts.openAtLogin
        subtitle: texts.openAtLoginText
        value: app.settings.opensAtLogin
        onWanted: on => app.settings.opensAtLogin = on
    }
    SoftLabel {
        objectName: "loginItemError"
        text: app.settings.loginItemError
        visible: text !== ""
        color: Theme.warning
        width: parent.width
    }
    SecondaryButton {
        objectName: "approve"
        text: texts.approve
        compact: true
        tint: Theme.warning
        visible: app.settings.needsApproval
        onClicked: app.settings.approveLoginItem()
    }
    SwitchRow {
        objectName: "autoConnect"
        title: texts.autoConnect
        subtitle: texts.autoConnectText
        value: app.settings.autoConnect
        onWanted: on => app.settings.autoConnect = on
    }
    SwitchRow {
        objectName: "showInDock"
        title: texts.showInDock
        value: app.settings.showInDock
        onWanted: on => app.settings.showInDock = on
    }
    SwitchRow {
        objectName: "showInMenuBar"
        title: texts.showInMenuBar
        subtitle: app.settings.lacksTray ? texts.noTray : ""
        value: app.settings.showInMenuBar
        onWanted: on => app.settings.showInMenuBar = on
    }
}
