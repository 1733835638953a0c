import QtQuick

// A symbol to be clicked; `label` is its name for who cannot see it.
PressButton {
    id: button

    required property string symbol
    required property string label

    implicitWidth: 8 * Theme.unit
    implicitHeight: 8 * Theme.unit
    Accessible.name: label

    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            name: button.symbol
            color: button.hovered || button.visualFocus ? Theme.ink : Theme.softInk
            size: 20
        }
    }
    background: Rectangle {
        radius: height / 2
        color: Theme.faded(Theme.ink, button.down ? 0.12 : button.hovered ? 0.07 : 0)
        FocusRing { shown: button.visualFocus }
    }
}
