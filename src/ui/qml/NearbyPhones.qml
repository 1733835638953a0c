import QtQuick
import QtQuick.Layouts

GlassCard {
    id: card
    objectName: "nearbyPhones"

    RowLayout {
        Layout.fillWidth: true
        SectionLabel {
            text: texts.nearbyIPhones
            Layout.fillWidth: true
        }
        IconButton {
            objectName: "searchAgain"
            symbol: "arrow.clockwise"
            label: texts.searchAgainIcon
            onClicked: app.phones.searchAgain()
        }
    }
    SoftLabel {
        objectName: "caution"
        text: texts.caution
        Layout.fillWidth: true
    }
    Repeater {
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

            SignalBars {
                objectName: "signal"
                bars: phone.bars
                label: phone.signalLabel
                Layout.rightMargin: Theme.unit
            }
            PrimaryButton {
                objectName: "trust"
                text: texts.trustAndConnect
                compact: true
                Accessible.description: phone.name
                onClicked: app.phones.connectNearby(phone.phoneId)
            }
        }
    }
    ColumnLayout {
        objectName: "noneNearby"
        visible: app.phones.nearby.count === 0
        spacing: Theme.unit
        Layout.fillWidth: true
        Label {
            objectName: "noneNearbyTitle"
            text: app.connection.isBluetoothUnavailable ? texts.turnOnBluetooth : texts.noneFound
            Layout.fillWidth: true
        }
        SoftLabel {
            objectName: "noneNearbyHelp"
            text: texts.noneFoundHelp
            visible: !app.connection.isBluetoothUnavailable
            Layout.fillWidth: true
        }
    }
    Item { Layout.fillHeight: true }
}
