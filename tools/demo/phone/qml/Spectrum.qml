import QtQuick
import Orbinex

// What the selected track sounds like: its spectrum, and how loud it was lately.
Pane {
    id: pane

    height: 22 * Theme.unit

    Caption {
        objectName: "selected"
        x: 4 * Theme.unit
        y: 2.5 * Theme.unit
        width: parent.width - 2 * x
        text: "Spectrum · " + phone.selectedName
    }
    Bars {
        x: 4 * Theme.unit
        y: 8 * Theme.unit
        width: (parent.width - 12 * Theme.unit) * 0.64
        height: parent.height - y - 3 * Theme.unit
        values: phone.spectrum
        places: 16
        crest: Theme.accent
        foot: PhoneTheme.spectrumFoot
    }
    Bars {
        anchors.right: parent.right
        anchors.rightMargin: 4 * Theme.unit
        y: 8 * Theme.unit
        width: (parent.width - 12 * Theme.unit) * 0.36
        height: parent.height - y - 3 * Theme.unit
        values: phone.history
        places: 16
        gap: 1
        crest: Theme.softInk
        foot: Theme.popupEdge
    }
}
