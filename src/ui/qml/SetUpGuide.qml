import QtQuick

GlassCard {
    objectName: "setUpGuide"
    spacing: 5 * Theme.unit

    SectionLabel {
        text: texts.setUp
        width: parent.width
    }
    Flow {
        id: steps

        readonly property int inRow: width < 600 ? 2 : 4
        readonly property real stepWidth: Math.floor((width - (inRow - 1) * spacing) / inRow)

        spacing: 6 * Theme.unit
        width: parent.width

        SetUpStep { width: steps.stepWidth; number: 1; title: texts.step1Title; text: texts.step1Text }
        SetUpStep { width: steps.stepWidth; number: 2; title: texts.step2Title; text: texts.step2Text }
        SetUpStep { width: steps.stepWidth; number: 3; title: texts.step3Title; text: texts.step3Text }
        SetUpStep { width: steps.stepWidth; number: 4; title: texts.step4Title; text: texts.step4Text }
    }
}
