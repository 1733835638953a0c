import QtQuick
import Orbinex

// Figures that stand still while they change: each has a place of its own.
Row {
    id: digits

    required property string text
    property color color: Theme.ink

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Repeater {
        model: digits.text.length
        Text {
            required property int index
            readonly property string character: digits.text.charAt(index)
            width: PhoneTheme.digitSize * (/[0-9]/.test(character) ? 0.66 : 0.32)
            horizontalAlignment: Text.AlignHCenter
            text: character
            textFormat: Text.PlainText
            color: /[0-9]/.test(character) ? digits.color : Theme.softInk
            font.family: Theme.light
            font.pixelSize: PhoneTheme.digitSize
        }
    }
}
