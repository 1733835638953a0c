import QtQuick

// One of our symbols. It says nothing to who cannot see it: what stands beside it does.
Image {
    required property string name
    property color color: Theme.ink
    property real size: 20

    width: size
    height: size
    sourceSize: Qt.size(Math.round(size * Screen.devicePixelRatio), Math.round(size * Screen.devicePixelRatio))
    source: name ? "image://symbol/" + name + "/" + String(color).slice(1) : ""
    Accessible.ignored: true
}
