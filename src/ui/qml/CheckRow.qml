import QtQuick
import QtQuick.Templates as T

T.CheckBox {
    id: check

    implicitWidth: box.width + 2.5 * Theme.unit + words.implicitWidth
    implicitHeight: 7 * Theme.unit
    focusPolicy: Qt.StrongFocus
    font.family: Theme.light
    font.pixelSize: Theme.smallSize
    Accessible.name: text
    Accessible.onPressAction: toggle()
    Accessible.onToggleAction: toggle()

    indicator: Rectangle {
        id: box
        anchors.verticalCenter: parent.verticalCenter
        width: 5 * Theme.unit
        height: width
        radius: 1.5 * Theme.unit
        color: check.checked ? Theme.primary : "transparent"
        border.color: check.checked ? Theme.accent : Theme.idle
        FocusRing { shown: check.visualFocus }
        Symbol {
            anchors.centerIn: parent
            visible: check.checked
            name: "checkmark"
            color: Theme.primaryInk
            size: 14
        }
    }
    contentItem: Text {
        id: words
        leftPadding: box.width + 2.5 * Theme.unit
        text: check.text
        textFormat: Text.PlainText
        font: check.font
        color: Theme.ink
        verticalAlignment: Text.AlignVCenter
    }
}
