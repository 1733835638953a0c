pragma Singleton
import QtQuick

// The one palette, type scale and grid.
QtObject {
    readonly property color accent: "#00DCFE"
    readonly property color background: "#0A0C10"
    readonly property color windowBackground: "#0F1218"
    readonly property color raised: "#13161C"
    readonly property color warning: "#FFBE2C"
    readonly property color success: "#3DDC97"
    readonly property color danger: "#FF5C6C"
    readonly property color primary: "#00B8D4"
    readonly property color primaryInk: "#001F26"
    readonly property color ink: "#F1F4F8"
    readonly property color softInk: "#A6B0BE"
    readonly property color edge: "#262B35"
    readonly property color line: "#1E232C"
    // The light on a card, what lies over cards, and the shade under it.
    readonly property color glass: "#1A1E26"
    readonly property color popup: "#181C24"
    readonly property color popupEdge: "#353C48"
    readonly property color shade: "#B0080A0E"
    // What is off, and what is of no importance.
    readonly property color neutral: "#2A303A"
    readonly property color idle: "#4A5361"
    readonly property color dangerInk: "#2A0409"

    function tint(name) {
        return name === "success" ? success : name === "danger" ? danger : accent
    }
    function faded(colour, opacity) {
        return Qt.rgba(colour.r, colour.g, colour.b, opacity)
    }

    readonly property string book: typeface.book
    readonly property string light: typeface.light
    // 11 points at 96 dots an inch.
    readonly property int smallSize: Math.round(15 * typeface.scale)
    readonly property int bodySize: Math.round(17 * typeface.scale)
    readonly property int headingSize: Math.round(20 * typeface.scale)
    readonly property int titleSize: Math.round(30 * typeface.scale)

    // Distances are multiples of this.
    readonly property int unit: 4
    readonly property int gap: 4 * unit
    readonly property int margin: 7 * unit
    readonly property int cornerRadius: 4 * unit
    // At the beginning of a row, so that what follows starts on one line.
    readonly property int symbolSize: 6 * unit
    readonly property int quick: 120
}
