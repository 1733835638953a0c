#include "ui/connection_face.h"

#include "link/link_texts.h"
#include "ui/interface_texts.h"

namespace orbinex {

namespace Text = InterfaceText;

PhaseFace phaseFace(LinkPhase phase) {
    constexpr const char* mouse = "computermouse";
    switch (phase) {
        case LinkPhase::bluetoothUnavailable:
            return {Text::bluetoothUnavailableWord,
                    mouse,
                    "exclamationmark.triangle.fill",
                    Tint::danger,
                    false,
                    LinkAction::none,
                    LinkAction::openBluetoothSettings};
        case LinkPhase::searching: break;
        case LinkPhase::connecting:
            return {Text::connectingWord, mouse, "arrow.triangle.2.circlepath",
                    Tint::accent,         true,  LinkAction::cancel,
                    LinkAction::cancel};
        case LinkPhase::securing:
            return {Text::securingWord, mouse, "lock.shield", Tint::accent, true, LinkAction::cancel,
                    LinkAction::cancel};
        case LinkPhase::connected:
            return {
                Text::connectedWord,    "computermouse.fill",  "checkmark.circle.fill", Tint::success, false,
                LinkAction::disconnect, LinkAction::disconnect};
    }
    return {Text::searchingWord,    mouse, "dot.radiowaves.left.and.right",
            Tint::accent,           true,  LinkAction::searchAgain,
            LinkAction::searchAgain};
}

std::string actionLabel(LinkAction action) {
    switch (action) {
        case LinkAction::none: break;
        case LinkAction::searchAgain: return Text::searchAgain;
        case LinkAction::cancel: return Text::cancel;
        case LinkAction::disconnect: return Text::disconnect;
        case LinkAction::openBluetoothSettings: return Text::openBluetoothSettings;
    }
    return {};
}

ConnectionFace connectionFace(LinkPhase phase, const std::optional<std::string>& activeName,
                              bool anyTrusted) {
    const std::string name = activeName.value_or(LinkText::someIPhone);
    const std::string titleUnderWay = activeName.value_or(Text::connectingRow);
    switch (phase) {
        case LinkPhase::bluetoothUnavailable:
            return {phase, Text::bluetoothUnavailableLine, Text::bluetoothUnavailableTitle};
        case LinkPhase::searching: break;
        case LinkPhase::connecting: return {phase, LinkText::connecting(name), titleUnderWay};
        case LinkPhase::securing: return {phase, Text::securingLine, titleUnderWay};
        case LinkPhase::connected: return {phase, LinkText::connected(name), LinkText::connected(name)};
    }
    return {LinkPhase::searching, anyTrusted ? Text::waitingLine : Text::noIPhoneLine,
            anyTrusted ? Text::waitingLine : Text::welcomeTitle};
}

}  // namespace orbinex
