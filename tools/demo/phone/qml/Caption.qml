import QtQuick
import Orbinex

Label {
    color: Theme.softInk
    font.family: Theme.light
    font.pixelSize: PhoneTheme.captionSize
    wrapMode: Text.NoWrap
    elide: Text.ElideRight
}
