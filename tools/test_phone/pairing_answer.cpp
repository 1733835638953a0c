#include "test_phone/pairing_answer.h"

namespace orbinex::test_phone {

std::string_view name(PairingAnswer answer) {
    switch (answer) {
        case PairingAnswer::accept: return "accept";
        case PairingAnswer::refuse: return "refuse";
        case PairingAnswer::ignore: return "ignore";
        case PairingAnswer::ask: break;
    }
    return "ask";
}

std::optional<PairingAnswer> pairingAnswerNamed(std::string_view text) {
    for (const auto answer :
         {PairingAnswer::accept, PairingAnswer::refuse, PairingAnswer::ignore, PairingAnswer::ask}) {
        if (name(answer) == text) return answer;
    }
    return std::nullopt;
}

}  // namespace orbinex::test_phone
