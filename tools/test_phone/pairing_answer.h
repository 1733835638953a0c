#pragma once

#include <optional>
#include <string_view>

namespace orbinex::test_phone {

/// What the phone's owner does when asked to compare digits.
enum class PairingAnswer {
    accept,
    refuse,
    /// Never answers.
    ignore,
    /// Leaves it to whoever is at the terminal.
    ask,
};

std::string_view name(PairingAnswer answer);
std::optional<PairingAnswer> pairingAnswerNamed(std::string_view name);

}  // namespace orbinex::test_phone
