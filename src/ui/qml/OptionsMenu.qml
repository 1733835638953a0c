import QtQuick
import QtQuick.Templates as T

// What can be done with a trusted iPhone beside connecting it.
T.Menu {
    id: menu

    required property string phoneId
    readonly property FocusMemory focusBefore: FocusMemory {}

    implicitWidth: 60 * Theme.unit
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    padding: 1.5 * Theme.unit
    margins: 2 * Theme.unit

    onAboutToShow: focusBefore.keep(parent.Window.activeFocusItem)
    onClosed: focusBefore.giveBack()

    contentItem: ListView {
        implicitHeight: contentHeight
        model: menu.contentModel
        currentIndex: menu.currentIndex
        interactive: false
    }
    background: Rectangle {
        radius: 2.5 * Theme.unit
        color: Theme.popup
        border.color: Theme.popupEdge
    }

    T.MenuItem {
        id: item
        objectName: "forget"
        text: texts.forgetThis
        implicitHeight: 9 * Theme.unit
        width: menu.availableWidth
        leftPadding: 3 * Theme.unit
        font.family: Theme.book
        font.pixelSize: Theme.bodySize
        Accessible.name: text
        Accessible.onPressAction: clicked()
        onTriggered: {
            // The message is to find the keyboard where it was before the menu.
            menu.focusBefore.giveBack()
            app.message.askToForget(menu.phoneId)
        }

        contentItem: Text {
            text: item.text
            textFormat: Text.PlainText
            font: item.font
            color: Theme.danger
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            radius: 1.5 * Theme.unit
            color: item.highlighted || item.hovered ? Theme.faded(Theme.danger, 0.14) : "transparent"
        }
    }
}
