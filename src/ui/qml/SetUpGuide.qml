import QtQuick
import QtQuick.Layouts

GlassCard {
    id: card
    objectName: "setUpGuide"
    spacing: 5 * Theme.unit

    SectionLabel {
        text: texts.setUp
        Layout.fillWidth: true
    }
    GridLayout {
        Layout.fillWidth: true
        columns: card.width < 640 ? 2 : 4
        columnSpacing: 6 * Theme.unit
        rowSpacing: 6 * Theme.unit

        SetUpStep { number: 1; title: texts.step1Title; text: texts.step1Text }
        SetUpStep { number: 2; title: texts.step2Title; text: texts.step2Text }
        SetUpStep { number: 3; title: texts.step3Title; text: texts.step3Text }
        SetUpStep { number: 4; title: texts.step4Title; text: texts.step4Text }
    }
}
