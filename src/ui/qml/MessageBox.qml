import QtQuick
import QtQuick.Templates as T

// The message that waits for an answer, in front of everything else in the window.
T.Popup {
    id: box
    objectName: "messageBox"

    /// Which message is shown: an answer is to that one.
    property int serial: 0

    function answer(button) {
        app.message.answer(serial, button, ticked.checked)
    }

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(440, parent ? parent.width - 2 * Theme.margin : 440)
    implicitHeight: contentItem.implicitHeight + 2 * padding
    padding: 7 * Theme.unit
    modal: true
    focus: true
    closePolicy: T.Popup.NoAutoClose
    visible: app.message.isShown
    onAboutToShow: adopt()
    onOpened: defaultButton()

    function adopt() {
        serial = app.message.serial
        ticked.checked = false
    }
    function defaultButton() {
        const chosen = buttons.itemAt(app.message.needsCare ? buttons.count - 1 : 0)
        if (chosen) chosen.forceActiveFocus(Qt.OtherFocusReason)
    }
    Connections {
        target: app.message
        function onChanged() {
            box.adopt()
            box.defaultButton()
        }
    }

    T.Overlay.modal: Rectangle { color: "#B0080A0E" }

    background: Rectangle {
        radius: Theme.cornerRadius
        color: "#181C24"
        border.color: "#353C48"
    }

    contentItem: FocusScope {
        implicitHeight: column.height
        focus: true
        Accessible.role: Accessible.AlertMessage
        Accessible.name: app.message.title
        Accessible.description: app.message.text
        Keys.onEscapePressed: box.answer(app.message.buttons.length - 1)

        Column {
            id: column
            width: parent.width
            spacing: 3 * Theme.unit

            Label {
                objectName: "messageTitle"
                text: app.message.title
                font.pixelSize: Theme.headingSize
                maximumLineCount: 4
                elide: Text.ElideRight
                width: parent.width
            }
            SoftLabel {
                objectName: "messageText"
                text: app.message.text
                width: parent.width
            }
            CheckRow {
                id: ticked
                objectName: "suppression"
                text: app.message.suppression
                visible: text !== ""
            }
            Flow {
                width: parent.width
                topPadding: 3 * Theme.unit
                layoutDirection: Qt.RightToLeft
                spacing: 2 * Theme.unit
                Repeater {
                    id: buttons
                    model: app.message.buttons
                    ActionButton {
                        required property string modelData
                        required property int index
                        readonly property bool isMain: index === 0
                        readonly property color mainColour: app.message.isDestructive ? Theme.danger : Theme.primary
                        objectName: "messageButton" + index
                        text: modelData
                        fill: isMain ? mainColour : "#262C36"
                        edge: isMain ? mainColour : "#353C48"
                        ink: isMain ? (app.message.isDestructive ? "#2A0409" : Theme.primaryInk) : Theme.ink
                        onClicked: box.answer(index)
                    }
                }
            }
        }
    }
}
