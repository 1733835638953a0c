#pragma once

#include <functional>
#include <optional>
#include <string>

namespace orbinex {

/// Asks the user whether this computer may be paired with an iPhone. Main thread only.
class PairingPrompt {
  public:
    using Answer = std::function<void(bool isAccepted)>;

    PairingPrompt() = default;
    PairingPrompt(const PairingPrompt&) = delete;
    PairingPrompt& operator=(const PairingPrompt&) = delete;
    virtual ~PairingPrompt() = default;

    /// `digits` are the six that the iPhone shows too, nothing when there are none to compare. `answer` is
    /// called at most once, then or later; one question at a time.
    virtual void ask(const std::string& name, const std::optional<std::string>& digits, Answer answer) = 0;
    /// The question has become pointless; its answer is not wanted any more.
    virtual void withdraw() = 0;
};

}  // namespace orbinex
