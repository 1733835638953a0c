import QtQuick

Line {
    objectName: "header"
    leading: Symbol {
        name: "computermouse.fill"
        color: Theme.accent
        size: Theme.symbolSize
    }
    Label {
        objectName: "wordmark"
        text: texts.wordmark
        font.pixelSize: Theme.headingSize
        font.letterSpacing: 5
        wrapMode: Text.NoWrap
        Accessible.role: Accessible.Heading
    }
    trailing: Rectangle {
        id: pill

        readonly property color tint: Theme.tint(app.connection.tint)

        width: inside.width + 5 * Theme.unit
        height: 9 * Theme.unit
        radius: height / 2
        color: Theme.faded(tint, 0.08)
        border.color: Theme.faded(tint, 0.3)
        Row {
            id: inside
            anchors.verticalCenter: parent.verticalCenter
            x: 1.5 * Theme.unit
            spacing: 2.5 * Theme.unit
            StatusOrb {
                anchors.verticalCenter: parent.verticalCenter
                symbol: app.connection.orbSymbol
                tint: pill.tint
                size: 24
            }
            Label {
                objectName: "phaseWord"
                anchors.verticalCenter: parent.verticalCenter
                text: app.connection.word
                font.pixelSize: Theme.smallSize
                wrapMode: Text.NoWrap
            }
        }
    }
}
