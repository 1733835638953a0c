import QtQuick

GlassCard {
    id: card
    objectName: "myPhones"

    Line {
        minimumHeight: 8 * Theme.unit
        SectionLabel {
            text: texts.myIPhones
            width: parent.width
        }
    }
    SoftLabel {
        objectName: "noTrusted"
        text: texts.noTrusted
        visible: app.phones.trusted.count === 0
        width: parent.width
    }
    Rows {
        model: app.phones.trusted
        PhoneRow {
            id: phone

            required property string phoneId
            required property string windowStatus
            required property string moreLabel
            required property bool canConnect
            required property bool canDisconnect
            required property int index

            objectName: "myPhone" + index
            symbol: "iphone"
            status: windowStatus
            statusColor: canDisconnect ? Theme.success : canConnect ? Theme.softInk : Theme.accent

            trailing: [
                SecondaryButton {
                    objectName: "connect"
                    text: texts.connect
                    compact: true
                    visible: phone.canConnect
                    Accessible.description: phone.name
                    onClicked: app.phones.connectTrusted(phone.phoneId)
                },
                SecondaryButton {
                    objectName: "disconnect"
                    text: texts.disconnect
                    compact: true
                    tint: quiet
                    visible: phone.canDisconnect
                    Accessible.description: phone.name
                    onClicked: app.phones.disconnectTrusted(phone.phoneId)
                },
                IconButton {
                    id: more
                    objectName: "more"
                    symbol: "ellipsis.circle"
                    label: phone.moreLabel
                    Accessible.role: Accessible.ButtonMenu
                    onClicked: menu.open()
                    OptionsMenu {
                        id: menu
                        phoneId: phone.phoneId
                        x: more.width - width
                        y: more.height + Theme.unit
                    }
                }
            ]
        }
    }
}
