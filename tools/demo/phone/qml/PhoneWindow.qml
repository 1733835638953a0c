import QtQuick
import Orbinex

// The simulated phone. It is drawn at the size that it was designed for, and scaled as a whole to the window.
Window {
    id: window
    objectName: "phone"

    readonly property real fit: Math.min(width / body.width, height / body.height)

    title: "Studio iPhone"
    width: 432
    height: 904
    minimumWidth: 216
    minimumHeight: 452
    color: Theme.windowBackground

    PhoneBody {
        id: body
        x: Math.round((window.width - width * window.fit) / 2)
        y: Math.round((window.height - height * window.fit) / 2)
        width: 432
        height: 904
        transformOrigin: Item.TopLeft
        scale: window.fit
    }
}
