#pragma once

#include <functional>
#include <optional>
#include <string>

#include "link/pairing_prompt.h"

namespace orbinex {

/// Asks about a pairing on the terminal.
class TerminalPrompt final : public PairingPrompt {
  public:
    explicit TerminalPrompt(std::function<void(const std::string&)> print) : print_(std::move(print)) {}

    void ask(const std::string& name, const std::optional<std::string>& digits, Answer answer) override;
    void withdraw() override;

    /// What the user answers; false when nothing is asked.
    bool answer(bool isAccepted);

  private:
    std::function<void(const std::string&)> print_;
    Answer open_;
};

}  // namespace orbinex
