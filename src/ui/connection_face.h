#pragma once

#include <optional>
#include <string>

#include "link/link_model.h"

namespace orbinex {

/// What a person can do about the link.
enum class LinkAction { none, searchAgain, cancel, disconnect, openBluetoothSettings };

/// Names of the palette's colours.
enum class Tint { accent, success, danger };

/// A phase as it is shown everywhere. The texts and symbol names live as long as the program.
struct PhaseFace {
    const char* word;
    const char* traySymbol;
    const char* orbSymbol;
    Tint tint;
    /// Something is under way.
    bool isPulsing;
    LinkAction panelAction;
    LinkAction windowAction;
};
[[nodiscard]] PhaseFace phaseFace(LinkPhase phase);

/// Empty for none.
[[nodiscard]] const char* actionLabel(LinkAction action);
/// The name of the symbol beside the label; empty for none.
[[nodiscard]] const char* actionSymbol(LinkAction action);

/// The link in the sentences of the panel and of the main window.
struct ConnectionFace {
    LinkPhase phase = LinkPhase::searching;
    std::string panelStatus;
    std::string windowTitle;
    /// The link's own line where it tells more than the title; else empty.
    std::string windowDetail;

    friend bool operator==(const ConnectionFace&, const ConnectionFace&) = default;
};
/// What the link publishes of itself.
struct LinkReport {
    LinkPhase phase = LinkPhase::searching;
    /// Of the iPhone that is being connected or is connected; nothing without one.
    std::optional<std::string> activeName;
    std::string statusMessage;
};
[[nodiscard]] ConnectionFace connectionFace(const LinkReport& report, bool anyTrusted);

}  // namespace orbinex
