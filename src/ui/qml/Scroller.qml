import QtQuick
import QtQuick.Templates as T

// A column that can be taller than its window. What the keyboard reaches is brought into view.
Flickable {
    id: scroller

    readonly property Item focused: Window.activeFocusItem

    contentWidth: width
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    interactive: contentHeight > height
    onFocusedChanged: if (focused) reveal(focused)

    function reveal(item) {
        // A window that has not been shown yet has no size.
        if (height <= 0) return
        for (let above = item; above !== contentItem; above = above.parent)
            if (!above) return
        const top = item.mapToItem(contentItem, 0, 0).y
        const room = 6 * Theme.unit
        if (top - room < contentY) contentY = Math.max(0, top - room)
        else if (top + item.height + room > contentY + height)
            contentY = Math.min(contentHeight - height, top + item.height + room - height)
    }

    T.ScrollBar.vertical: T.ScrollBar {
        id: bar
        width: 2.5 * Theme.unit
        padding: 2
        policy: T.ScrollBar.AsNeeded
        visible: size < 1
        contentItem: Rectangle {
            radius: width / 2
            color: bar.pressed || bar.hovered ? "#5A6472" : "#333B47"
        }
    }
}
