#pragma once

#include "base/signal.h"

namespace orbinex {

/// Tells when the person comes to one of the program's windows from another program.
class ActivationNotifier {
  public:
    ActivationNotifier() = default;
    ActivationNotifier(const ActivationNotifier&) = delete;
    ActivationNotifier& operator=(const ActivationNotifier&) = delete;
    virtual ~ActivationNotifier() = default;

    /// Emitted on the main thread.
    Signal<> didBecomeActive;
};

}  // namespace orbinex
