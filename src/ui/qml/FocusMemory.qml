import QtQuick

// Where the keyboard was before a popup took it, to be there again when the popup closes.
QtObject {
    property Item place: null
    property bool wasShown: false

    function keep(item) {
        place = item
        wasShown = item !== null && item.visualFocus === true
    }
    function giveBack() {
        // A popup may have given it back by itself already, for a reason that shows no ring; an item that has the
        // keyboard takes no other reason.
        if (place && place.visible) {
            place.focus = false
            place.forceActiveFocus(wasShown ? Qt.TabFocusReason : Qt.PopupFocusReason)
        }
        place = null
    }
}
