#pragma once

#include <string>

namespace orbinex {

/// Whether the desktop takes input from this program. Main thread only.
class InputPermission {
  public:
    InputPermission() = default;
    InputPermission(const InputPermission&) = delete;
    InputPermission& operator=(const InputPermission&) = delete;
    virtual ~InputPermission() = default;

    /// Read anew at every call; asks nobody.
    [[nodiscard]] virtual bool isGranted() = 0;
    /// Asks for it, or sets right what is missing where the program can; true when it is granted now. The
    /// person may be asked after this has returned.
    virtual bool request() = 0;
    /// What is missing and what the person can do, in a sentence or two; empty when nothing is missing or
    /// there is nothing to say.
    [[nodiscard]] virtual std::string explanation() = 0;
};

}  // namespace orbinex
