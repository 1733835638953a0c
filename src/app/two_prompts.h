#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "link/pairing_prompt.h"

namespace orbinex {

/// Asks in two places at once; the first answer counts, and the question goes from the other place.
class TwoPrompts final : public PairingPrompt {
  public:
    /// Both must outlive this one.
    TwoPrompts(PairingPrompt& first, PairingPrompt& second) : first_(first), second_(second) {}

    void ask(const std::string& name, const std::optional<std::string>& digits, Answer answer) override {
        const auto open = std::make_shared<Answer>(std::move(answer));
        open_ = open;
        first_.ask(name, digits, answerOnce(open, second_));
        if (*open) second_.ask(name, digits, answerOnce(open, first_));
    }
    void withdraw() override {
        if (open_) *open_ = nullptr;
        first_.withdraw();
        second_.withdraw();
    }

  private:
    static Answer answerOnce(const std::shared_ptr<Answer>& open, PairingPrompt& other) {
        return [open, &other](bool isAccepted) {
            const Answer answer = std::exchange(*open, nullptr);
            if (!answer) return;
            other.withdraw();
            answer(isAccepted);
        };
    }

    PairingPrompt& first_;
    PairingPrompt& second_;
    std::shared_ptr<Answer> open_;
};

}  // namespace orbinex
