pragma Singleton
import QtQuick
import Orbinex

// What the phone adds to the interface's palette, type scale and grid.
QtObject {
    readonly property int captionSize: Math.round(12 * typeface.scale)
    readonly property int digitSize: Math.round(34 * typeface.scale)
    readonly property int spacing: 2.5 * Theme.unit
    readonly property color well: "#0A0C10"
    readonly property color cap: "#DDE4EC"

    readonly property var trackColours: ["#00DCFE", "#9B8CFF", "#3DDC97", "#FFBE2C", "#FF7FA3", "#5FA2FF"]
    function trackColour(index) {
        return index < 1 ? Theme.softInk : trackColours[(index - 1) % trackColours.length]
    }
}
