#include "app/terminal_prompt.h"

#include <algorithm>
#include <utility>

namespace orbinex {

void TerminalPrompt::ask(const std::string& name, const std::optional<std::string>& digits, Answer answer) {
    open_ = std::move(answer);
    const auto comparison = digits ? "It shows " + *digits + "." : "It shows no digits to compare.";
    // The name is whatever its owner wants; it must not end its quotes and go on with digits of its own.
    std::string quoted = name;
    std::ranges::replace(quoted, '"', '\'');
    print_("Pair with \"" + quoted + "\"? " + comparison + " Type yes or no.");
}

void TerminalPrompt::withdraw() {
    open_ = nullptr;
    print_("The question about pairing is withdrawn.");
}

bool TerminalPrompt::answer(bool isAccepted) {
    const auto open = std::exchange(open_, nullptr);
    if (open) open(isAccepted);
    return static_cast<bool>(open);
}

}  // namespace orbinex
