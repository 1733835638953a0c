#pragma once

#include "base/signal.h"

namespace orbinex {

/// Tells when the computer has woken from sleep.
class WakeNotifier {
  public:
    WakeNotifier() = default;
    WakeNotifier(const WakeNotifier&) = delete;
    WakeNotifier& operator=(const WakeNotifier&) = delete;
    virtual ~WakeNotifier() = default;

    /// Emitted on the main thread after every wake.
    Signal<> didWake;
};

}  // namespace orbinex
