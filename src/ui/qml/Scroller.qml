import QtQuick
import QtQuick.Templates as T

// A column that can be taller than its window. What the keyboard reaches is brought into view.
Flickable {
    id: scroller

    readonly property Item focused: Window.activeFocusItem
    readonly property real wheelStep: 15 * Theme.unit

    contentWidth: width
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    focus: true
    // A press that moves a little stays a click.
    interactive: false
    // What is pressed stays where it is.
    onFocusedChanged: if (focused && focused.visualFocus) reveal(focused)

    function scrollTo(y) {
        contentY = Math.max(0, Math.min(y, contentHeight - height))
    }
    function reveal(item) {
        // A window that has not been shown yet has no size.
        if (height <= 0) return
        for (let above = item; above !== contentItem; above = above.parent)
            if (!above) return
        const top = item.mapToItem(contentItem, 0, 0).y
        const room = 6 * Theme.unit
        if (top - room < contentY) scrollTo(top - room)
        else if (top + item.height + room > contentY + height) scrollTo(top + item.height + room - height)
    }

    Keys.onPressed: event => scrollBy(event)
    function scrollBy(event) {
        const page = 0.9 * height
        if (event.key === Qt.Key_PageUp) scrollTo(contentY - page)
        else if (event.key === Qt.Key_PageDown) scrollTo(contentY + page)
        else if (event.key === Qt.Key_Home) scrollTo(0)
        else if (event.key === Qt.Key_End) scrollTo(contentHeight)
        else return
        event.accepted = true
    }
    WheelHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: event => scroller.scrollTo(scroller.contentY
            - (event.pixelDelta.y || event.angleDelta.y / 120 * scroller.wheelStep))
    }
    DragHandler {
        property real start: 0
        target: null
        acceptedDevices: PointerDevice.TouchScreen
        onActiveChanged: start = scroller.contentY
        onActiveTranslationChanged: if (active) scroller.scrollTo(start - activeTranslation.y)
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar
        width: 2.5 * Theme.unit
        padding: 2
        policy: T.ScrollBar.AsNeeded
        visible: size < 1
        contentItem: Rectangle {
            radius: width / 2
            color: bar.pressed || bar.hovered ? Theme.idle : Theme.popupEdge
        }
    }
}
