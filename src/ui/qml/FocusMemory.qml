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
        if (place && place.visible) place.forceActiveFocus(wasShown ? Qt.TabFocusReason : Qt.PopupFocusReason)
        place = null
    }
}
