import QtQuick

// Text, which is never markup: names come from the air.
Text {
    color: Theme.ink
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    font.family: Theme.book
    font.pixelSize: Theme.bodySize
    renderType: Text.QtRendering
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
