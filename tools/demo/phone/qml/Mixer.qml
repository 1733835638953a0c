import QtQuick
import Orbinex

// A strip for every track, and the master, which stays where it is when there are many.
Pane {
    id: mixer

    readonly property real stripWidth: Math.floor((width - 4 * Theme.unit) / 6)

    height: 66 * Theme.unit

    ListView {
        objectName: "tracks"
        x: 2 * Theme.unit
        y: 2.5 * Theme.unit
        width: 5 * mixer.stripWidth
        height: parent.height - 5 * Theme.unit
        orientation: ListView.Horizontal
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentWidth > width
        clip: true
        model: phone.tracks
        delegate: ChannelStrip {
            width: mixer.stripWidth
            height: ListView.view.height
        }
    }
    Rectangle {
        x: 2 * Theme.unit + 5 * mixer.stripWidth
        y: 4 * Theme.unit
        width: 1
        height: parent.height - 8 * Theme.unit
        color: Theme.edge
    }
    Repeater {
        model: phone.master
        ChannelStrip {
            x: 2 * Theme.unit + 5 * mixer.stripWidth
            y: 2.5 * Theme.unit
            width: mixer.stripWidth
            height: mixer.height - 5 * Theme.unit
        }
    }
}
