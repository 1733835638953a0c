import QtQuick
import QtQuick.Templates as T

// The message that waits for an answer, in front of everything else in the window.
T.Popup {
    id: box
    objectName: "messageBox"

    /// Which message is shown: an answer is to that one.
    property int serial: 0
    /// How much can be in it.
    readonly property real tallest: parent ? parent.height - 2 * padding - 2 * Theme.gap - 2 * column.spacing : 0
    readonly property FocusMemory focusBefore: FocusMemory {}

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
    onAboutToShow: {
        focusBefore.keep(parent.Window.activeFocusItem)
        adopt()
    }
    onOpened: defaultButton()
    onClosed: focusBefore.giveBack()

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

    T.Overlay.modal: Rectangle { color: Theme.shade }

    background: Rectangle {
        radius: Theme.cornerRadius
        color: Theme.popup
        border.color: Theme.popupEdge
    }

    contentItem: FocusScope {
        objectName: "message"
        implicitHeight: column.height
        focus: true
        Accessible.role: Accessible.AlertMessage
        Accessible.name: app.message.title
        Accessible.description: app.message.text
        Keys.onEscapePressed: box.answer(app.message.buttons.length - 1)
        Keys.onPressed: event => sheet.scrollBy(event)

        Column {
            id: column
            width: parent.width
            spacing: 3 * Theme.unit

            Label {
                id: title
                objectName: "messageTitle"
                text: app.message.title
                font.pixelSize: Theme.headingSize
                maximumLineCount: 4
                elide: Text.ElideRight
                width: parent.width
            }
            // However long it is, the buttons stay in the window. Its bar stands beside the text.
            Scroller {
                id: sheet
                objectName: "messageSheet"
                focus: false
                width: column.width + 4 * Theme.unit
                height: Math.min(contentHeight, box.tallest - title.height - below.height)
                // Letters reach below their last line.
                contentHeight: words.height + Theme.unit
                SoftLabel {
                    id: words
                    objectName: "messageText"
                    text: app.message.text
                    width: column.width
                }
            }
            Column {
                id: below
                width: parent.width
                spacing: column.spacing

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
                            fill: isMain ? mainColour : Theme.neutral
                            edge: isMain ? mainColour : Theme.popupEdge
                            ink: isMain ? (app.message.isDestructive ? Theme.dangerInk : Theme.primaryInk) : Theme.ink
                            onClicked: box.answer(index)
                        }
                    }
                }
            }
        }
    }
}
