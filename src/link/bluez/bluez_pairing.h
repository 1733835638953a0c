#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/lifetime.h"
#include "link/bluetooth_central.h"
#include "link/bluez/bluez_bus.h"
#include "link/bluez/pairing_agent.h"
#include "link/pairing_prompt.h"

namespace orbinex {

/// Pairs one device at a time, at the user's wish. While it does, an agent of our own answers bluetoothd's
/// questions about that device; it is never the default agent, so that other pairings stay with the desktop.
class BluezPairing {
  public:
    using Done = std::function<void(const std::optional<BluetoothError>&)>;
    /// BlueZ 5.66 gives the user some 30 s for an answer and fails then; no answer after this means that it
    /// hangs.
    static constexpr std::chrono::seconds pairLimit{70};

    BluezPairing(BluezBus& bus, PairingPrompt& prompt) : bus_(bus), agent_(bus, prompt) {}

    /// `name` is what the user is asked about. `done` is called with nothing when the device is bonded, with
    /// an error when it is not, and not at all when the pairing is cancelled.
    void pair(const QString& device, const std::string& name, Done done);
    /// Of another device, or none: nothing is done.
    void cancel(const QString& device);
    /// Forgets the pairing that is under way, without a call.
    void clear();

  private:
    void agentRegistered(const BluezBus::Reply& reply);
    void paired(const BluezBus::Reply& reply);
    void checkBond();
    void finish(const std::optional<BluetoothError>& error);
    void unregisterAgent();

    BluezBus& bus_;
    PairingAgent agent_;
    QString device_;  ///< empty: nothing is under way
    Done done_;
    std::unique_ptr<Lifetime> calls_ = std::make_unique<Lifetime>();
};

}  // namespace orbinex
