#include "ui/pairing_question.h"

#include <utility>

namespace orbinex {

void PairingQuestion::ask(const std::string& name, const std::optional<std::string>& digits, Answer answer) {
    open_ = std::move(answer);
    question = Question{++lastSerial_, name, digits};
}

void PairingQuestion::withdraw() {
    open_ = nullptr;
    if (*question) question = std::nullopt;
}

void PairingQuestion::answer(int serial, bool isAccepted) {
    if (!*question || question.get()->serial != serial) return;
    const Answer answered = std::exchange(open_, nullptr);
    question = std::nullopt;
    if (answered) answered(isAccepted);
}

}  // namespace orbinex
