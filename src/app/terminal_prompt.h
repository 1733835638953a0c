#pragma once

#include <functional>
#include <optional>
#include <string>

#include "link/pairing_prompt.h"

namespace orbinex {

/// Asks about a pairing on the terminal. Without anybody who could answer, the answer is no.
class TerminalPrompt final : public PairingPrompt {
  public:
    explicit TerminalPrompt(std::function<void(const std::string&)> print) : print_(std::move(print)) {}

    void ask(const std::string& name, const std::optional<std::string>& digits, Answer answer) override;
    void withdraw() override;

    /// What the user answers; false when nothing is asked.
    bool answer(bool isAccepted);
    /// Nobody will answer any more.
    void inputEnded();

  private:
    std::function<void(const std::string&)> print_;
    Answer open_;
    bool canAnswer_ = true;
};

}  // namespace orbinex
