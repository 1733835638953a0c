import QtQuick
import QtQuick.Layouts

Flow {
    id: footer
    objectName: "footer"
    spacing: 2 * Theme.unit

    SoftLabel {
        objectName: "version"
        text: app.version
        height: 8 * Theme.unit
        rightPadding: 4 * Theme.unit
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.NoWrap
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
