import QtQuick
import QtQuick.Templates as T

// What all buttons have in common: the pointer, the keyboard and assistive technology press them alike.
T.Button {
    id: button

    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: event => pressedBy(event)
    Keys.onEnterPressed: event => pressedBy(event)
    Keys.onSpacePressed: event => event.accepted = event.isAutoRepeat
    Keys.onReleased: event => event.accepted = event.isAutoRepeat
    onVisibleChanged: if (!visible && activeFocus) leave()

    /// A key that is held down presses once: what the button does may have changed by then.
    function pressedBy(event) {
        if (!event.isAutoRepeat) clicked()
    }
    /// A button that is not seen must not go on being pressed.
    function leave() {
        nextItemInFocusChain().forceActiveFocus(visualFocus ? Qt.TabFocusReason : Qt.OtherFocusReason)
    }

    HoverHandler { cursorShape: Qt.PointingHandCursor }
}
