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
    readonly property color capFoot: "#9AA6B4"
    readonly property color capLine: "#20262F"
    readonly property color body: "#05070A"
    readonly property color notch: "#000000"
    readonly property color screenTop: "#141820"
    readonly property color screenFoot: "#0D1117"
    readonly property color levelFoot: "#1F8F74"
    readonly property color spectrumFoot: "#0A6C86"
    readonly property color hint: "#7A8594"

    readonly property var trackColours: ["#00DCFE", "#9B8CFF", "#3DDC97", "#FFBE2C", "#FF7FA3", "#5FA2FF"]
    function trackColour(index) {
        return index < 1 ? Theme.softInk : trackColours[(index - 1) % trackColours.length]
    }
}
