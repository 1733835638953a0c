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

const char* actionLabel(LinkAction action) {
    switch (action) {
        case LinkAction::none: break;
        case LinkAction::searchAgain: return Text::searchAgain;
        case LinkAction::cancel: return Text::cancel;
        case LinkAction::disconnect: return Text::disconnect;
        case LinkAction::openBluetoothSettings: return Text::openBluetoothSettings;
    }
    return "";
}

const char* actionSymbol(LinkAction action) {
    return action == LinkAction::searchAgain ? "arrow.clockwise" : "";
}

namespace {

std::string lineInPanel(const LinkReport& report, bool anyTrusted) {
    const std::string name = report.activeName.value_or(LinkText::someIPhone);
    switch (report.phase) {
        case LinkPhase::bluetoothUnavailable: return Text::bluetoothUnavailableLine;
        case LinkPhase::searching: break;
        case LinkPhase::connecting: return LinkText::connecting(name);
        case LinkPhase::securing: return Text::securingLine;
        case LinkPhase::connected: return LinkText::connected(name);
    }
    return anyTrusted ? Text::waitingLine : Text::noIPhoneLine;
}

std::string titleInWindow(const LinkReport& report, bool anyTrusted) {
    switch (report.phase) {
        case LinkPhase::bluetoothUnavailable: return Text::bluetoothUnavailableTitle;
        case LinkPhase::searching: break;
        case LinkPhase::connecting:
        case LinkPhase::securing: return report.activeName.value_or(Text::connectingRow);
        case LinkPhase::connected:
            return LinkText::connected(report.activeName.value_or(LinkText::someIPhone));
    }
    return anyTrusted ? Text::waitingLine : Text::welcomeTitle;
}

std::string detailInWindow(const LinkReport& report, const std::string& title) {
    const bool isInTitle = report.phase == LinkPhase::connected || report.statusMessage == title ||
                           report.statusMessage == LinkText::searching(true);
    return isInTitle ? std::string() : report.statusMessage;
}

}  // namespace

ConnectionFace connectionFace(const LinkReport& report, bool anyTrusted) {
    const std::string title = titleInWindow(report, anyTrusted);
    return {report.phase, lineInPanel(report, anyTrusted), title, detailInWindow(report, title)};
}

}  // namespace orbinex
