import QtQuick

Flow {
    id: footer
    objectName: "footer"
    spacing: 2 * Theme.unit

    Item {
        width: version.width + 4 * Theme.unit
        height: 8 * Theme.unit
        SoftLabel {
            id: version
            objectName: "version"
            anchors.verticalCenter: parent.verticalCenter
            text: app.version
            wrapMode: Text.NoWrap
        }
    }
    LinkButton {
        objectName: "getTheApp"
        text: texts.getTheApp
        Accessible.role: Accessible.Link
        onClicked: app.openAppStore()
    }
    LinkButton {
        objectName: "privacyPolicy"
        text: texts.privacyPolicy
        Accessible.role: Accessible.Link
        onClicked: app.openPrivacyPolicy()
    }
    LinkButton {
        objectName: "support"
        text: texts.support
        Accessible.role: Accessible.Link
        onClicked: app.openSupport()
    }
}
