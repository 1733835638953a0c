#pragma once

#include <optional>
#include <string>

#include "base/published.h"
#include "link/pairing_prompt.h"

namespace orbinex {

/// Asks about a pairing in the main window.
class PairingQuestion final : public PairingPrompt {
  public:
    struct Question {
        /// One number a question, so that an answer to an earlier one is not taken for this one's.
        int serial = 0;
        std::string name;
        std::optional<std::string> digits;

        friend bool operator==(const Question&, const Question&) = default;
    };

    /// The question that waits for an answer.
    Published<std::optional<Question>, PairingQuestion> question;

    void ask(const std::string& name, const std::optional<std::string>& digits, Answer answer) override;
    void withdraw() override;

    /// Does nothing when that question does not wait any more.
    void answer(int serial, bool isAccepted);

  private:
    Answer open_;
    int lastSerial_ = 0;
};

}  // namespace orbinex
