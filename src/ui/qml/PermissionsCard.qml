import QtQuick

GlassCard {
    objectName: "permissions"
    spacing: 5 * Theme.unit

    SectionLabel {
        text: texts.permissions
        width: parent.width
    }
    PermissionRow {
        objectName: "inputPermission"
        symbol: "cursorarrow.motionlines"
        title: texts.inputControl
        isSatisfied: app.settings.isInputAllowed
        missing: texts.required
        actionText: texts.allow
        onActed: app.settings.allowInput()
    }
    PermissionRow {
        objectName: "bluetoothPermission"
        symbol: "dot.radiowaves.left.and.right"
        title: texts.bluetooth
        isSatisfied: app.settings.isBluetoothOn
        missing: app.settings.bluetoothLabel
        actionText: texts.settings
        onActed: app.connection.openBluetoothSettings()
    }
}
