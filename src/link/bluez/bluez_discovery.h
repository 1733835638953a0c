#pragma once

#include <QString>

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "base/uuid.h"
#include "link/bluez/bluez_bus.h"

namespace orbinex {

/// Keeps one adapter's discovery in the state that is wanted, whatever comes of the calls. BlueZ itself ends
/// the discovery of a program that has gone.
class BluezDiscovery {
  public:
    /// Between a call that failed and the next.
    static constexpr std::chrono::seconds retryInterval{2};

    BluezDiscovery(BluezBus& bus, MainQueue& queue) : bus_(bus), queue_(queue) {}

    /// Forgets everything; for another adapter, or the same one after it was off. Empty is none.
    void reset(const QString& adapter);
    /// Low Energy devices that advertise the service are wanted, or nothing is.
    void want(const std::optional<UUID>& service);
    /// The adapter has ended what was going on.
    void ended();

  private:
    void proceed();
    void setFilter();
    void startOrStop(bool isStart);

    BluezBus& bus_;
    MainQueue& queue_;
    QString adapter_;
    std::optional<UUID> wanted_;
    bool isRunning_ = false;
    bool isCalling_ = false;
    Timer retry_;
    /// Answers to calls that were made before a reset are for nobody.
    std::unique_ptr<Lifetime> calls_ = std::make_unique<Lifetime>();
};

}  // namespace orbinex
