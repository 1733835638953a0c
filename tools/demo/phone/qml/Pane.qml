import QtQuick
import Orbinex

// A pane of the phone's glass.
Rectangle {
    radius: 4 * Theme.unit
    border.color: Theme.edge
    gradient: Gradient {
        GradientStop { position: 0; color: Theme.glass }
        GradientStop { position: 1; color: Theme.raised }
    }
}
