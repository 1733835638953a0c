import QtQuick

GlassCard {
    id: card
    objectName: "nearbyPhones"

    Line {
        SectionLabel {
            text: texts.nearbyIPhones
            width: parent.width
        }
        trailing: IconButton {
            objectName: "searchAgain"
            symbol: "arrow.clockwise"
            label: texts.searchAgainIcon
            onClicked: app.phones.searchAgain()
        }
    }
    SoftLabel {
        objectName: "caution"
        text: texts.caution
        width: parent.width
    }
    Rows {
        model: app.phones.nearby
        PhoneRow {
            id: phone

            required property string phoneId
            required property string signalLabel
            required property int bars
            required property int index

            objectName: "nearbyPhone" + index
            symbol: "iphone.radiowaves.left.and.right"
            status: texts.newIPhone
            badge: SignalBars {
                objectName: "signal"
                bars: phone.bars
                label: phone.signalLabel
            }
            trailing: PrimaryButton {
                objectName: "trust"
                text: texts.trustAndConnect
                compact: true
                Accessible.description: phone.name
                onClicked: app.phones.connectNearby(phone.phoneId)
            }
        }
    }
    Column {
        objectName: "noneNearby"
        visible: app.phones.nearby.count === 0
        spacing: Theme.unit
        width: parent.width
        Label {
            objectName: "noneNearbyTitle"
            text: app.connection.isBluetoothUnavailable ? texts.turnOnBluetooth : texts.noneFound
            width: parent.width
        }
        SoftLabel {
            objectName: "noneNearbyHelp"
            text: texts.noneFoundHelp
            visible: !app.connection.isBluetoothUnavailable
            width: parent.width
        }
    }
}
