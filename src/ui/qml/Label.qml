import QtQuick

// Text, which is never markup: names come from the air.
Text {
    property real leading: 1.2

    color: Theme.ink
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    // Also of a name that is written from right to left: the lists have one edge.
    horizontalAlignment: Text.AlignLeft
    font.family: Theme.book
    font.pixelSize: Theme.bodySize
    // Lines are evenly spaced also where a character comes from another face, and each stands in the middle of
    // its height.
    readonly property int lead: Math.round((lineHeight - font.pixelSize * typeface.natural) / 2)
    lineHeightMode: Text.FixedHeight
    lineHeight: Math.round(font.pixelSize * leading)
    topPadding: lead
    bottomPadding: -lead
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
