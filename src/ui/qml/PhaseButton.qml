import QtQuick

// Does what can be done in the present phase. What a click does was settled when the button was pressed: the
// phase may have changed before it was let go.
SecondaryButton {
    id: button

    required property int phaseAction
    property int pressedAction: 0

    visible: phaseAction !== 0
    tint: app.connection.isConnected ? quiet : Theme.accent
    onPressed: pressedAction = phaseAction
    onClicked: {
        const meant = pressedAction !== 0 ? pressedAction : phaseAction
        pressedAction = 0
        app.connection.perform(meant)
    }
    onCanceled: pressedAction = 0
}
