import QtQuick

// What most of the interface is made of: something at the beginning, texts that take the room there is, and
// something at the end. Widths go down and heights come up by bindings alone.
Item {
    id: line

    default property alias middle: middleColumn.data
    property alias leading: leadingRow.data
    property alias trailing: trailingRow.data
    property alias middleSpacing: middleColumn.spacing
    property real gap: 3 * Theme.unit
    property real minimumHeight: 0
    /// The beginning stands at the top, else in the middle.
    property bool isLeadingAtTop: false

    width: parent ? parent.width : implicitWidth
    implicitHeight: Math.max(leadingRow.height, middleColumn.height, trailingRow.height, minimumHeight)
    height: implicitHeight

    Row {
        id: leadingRow
        y: line.isLeadingAtTop ? 0 : (line.height - height) / 2
    }
    Column {
        id: middleColumn
        x: leadingRow.width > 0 ? leadingRow.width + line.gap : 0
        width: line.width - x - (trailingRow.width > 0 ? trailingRow.width + line.gap : 0)
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.unit / 2
    }
    Row {
        id: trailingRow
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2 * Theme.unit
    }
}
