import QtQuick
import Orbinex

// What is typed here is typed on the computer.
Rectangle {
    id: field

    implicitHeight: 11 * Theme.unit
    radius: height / 2
    color: PhoneTheme.well
    border.color: input.activeFocus ? Theme.accent : Theme.edge
    border.width: input.activeFocus ? 2 : 1

    Symbol {
        x: 4 * Theme.unit
        anchors.verticalCenter: parent.verticalCenter
        name: "keyboard"
        color: Theme.softInk
        size: 20
    }
    TextInput {
        id: input
        objectName: "field"

        property string known: ""

        x: 11 * Theme.unit
        width: parent.width - x - 4 * Theme.unit
        height: parent.height
        verticalAlignment: Text.AlignVCenter
        color: Theme.ink
        font.family: Theme.book
        font.pixelSize: Theme.smallSize
        clip: true
        selectByMouse: false
        inputMethodHints: Qt.ImhNoPredictiveText
        Accessible.name: "Type on the computer"

        // Once a character is composed.
        onTextEdited: {
            phone.typedInto(known, text)
            known = text
        }
        Keys.onPressed: event => {
            if (!phone.pressKey(event.key, event.modifiers)) return
            // The last character goes from here as well; the rest of the keys mean nothing here.
            event.accepted = event.key !== Qt.Key_Backspace
            if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) clear()
            known = text
        }
    }
    Caption {
        anchors.verticalCenter: parent.verticalCenter
        x: input.x
        width: input.width
        visible: input.text === "" && input.preeditText === ""
        text: phone.typed !== "" ? phone.typed : "Type on the computer"
        color: phone.typed !== "" ? Theme.ink : Theme.softInk
        elide: Text.ElideLeft
        font.pixelSize: Theme.smallSize
    }
}
