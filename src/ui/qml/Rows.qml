import QtQuick

// Rows that come and go with their model. A row that goes is hidden first, so that the keyboard, if it was on
// one of its buttons, moves on.
Repeater {
    onItemRemoved: (index, row) => row.visible = false
}
