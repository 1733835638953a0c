import QtQuick

// Heights from 0 to 1 side by side. With no values the bars lie flat.
Item {
    id: bars

    required property var values
    required property int places
    required property color crest
    required property color foot
    property real gap: 3

    readonly property real step: (width + gap) / places

    Accessible.ignored: true

    Repeater {
        model: bars.places
        Rectangle {
            required property int index
            readonly property real value: index < bars.values.length ? bars.values[index] : 0
            x: Math.round(index * bars.step)
            width: Math.round((index + 1) * bars.step) - x - bars.gap
            height: Math.max(2, Math.round(bars.height * value))
            y: bars.height - height
            radius: 1.5
            gradient: Gradient {
                GradientStop { position: 0; color: bars.crest }
                GradientStop { position: 1; color: bars.foot }
            }
        }
    }
}
