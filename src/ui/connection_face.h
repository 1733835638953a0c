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
[[nodiscard]] std::string actionLabel(LinkAction action);

/// The link in the sentences of the panel and of the main window.
struct ConnectionFace {
    LinkPhase phase = LinkPhase::searching;
    std::string panelStatus;
    std::string windowTitle;

    friend bool operator==(const ConnectionFace&, const ConnectionFace&) = default;
};
/// `activeName` is the name of the iPhone that is being connected or is connected, nothing without one.
[[nodiscard]] ConnectionFace connectionFace(LinkPhase phase, const std::optional<std::string>& activeName,
                                            bool anyTrusted);

}  // namespace orbinex
