#pragma once

#include <string>
#include <vector>

namespace orbinex {

/// A message box about moving the program, to be shown modally.
struct RelocationAlert {
    enum class Kind { offer, manualMove };
    Kind kind = Kind::offer;
    std::string title;
    std::string message;
    /// In the order in which they are shown; the first is the default.
    std::vector<std::string> buttons;
    /// The title of a check box, not ticked at first; empty for none.
    std::string suppression;

    friend bool operator==(const RelocationAlert&, const RelocationAlert&) = default;
};

/// The button of every message box that only tells something.
inline constexpr const char* okButton = "OK";

[[nodiscard]] RelocationAlert moveOffer();
[[nodiscard]] RelocationAlert manualMoveInstructions();

}  // namespace orbinex
