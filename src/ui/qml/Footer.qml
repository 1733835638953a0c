import QtQuick

Flow {
    id: footer
    objectName: "footer"
    spacing: 2 * Theme.unit
    // What begins a line begins with the cards, as a link's text is further in than the link.
    leftPadding: -2 * Theme.unit

    Item {
        width: version.width + 6 * Theme.unit
        height: 8 * Theme.unit
        SoftLabel {
            id: version
            objectName: "version"
            x: 2 * Theme.unit
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
