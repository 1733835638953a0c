#pragma once

#include <QString>

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "base/uuid.h"
#include "link/bluez/bluez_bus.h"

namespace orbinex {

/// Keeps one adapter's discovery in the state that is wanted, whatever comes of the calls. BlueZ itself ends
/// the discovery of a program that has gone.
///
/// Discovery goes in rounds: BlueZ tells only what is new of a device, so that one in range at an even signal
/// would be heard once and never again, and 5.66 rests for 5 s after every 10 s. A new round tells of every
/// device anew and has no rest.
class BluezDiscovery {
  public:
    /// Between a call that failed and the next.
    static constexpr std::chrono::seconds retryInterval{2};
    static constexpr std::chrono::seconds round{5};

    BluezDiscovery(BluezBus& bus, MainQueue& queue) : bus_(bus), queue_(queue) {}

    /// Forgets everything; for another adapter, or the same one after it was off. Empty is none.
    void useAdapter(const QString& adapter);
    /// Ends what may be running, and forgets everything.
    void end();
    /// Low Energy devices that advertise the service are wanted, or nothing is.
    void want(const std::optional<UUID>& service);
    /// Rests while there is something that discovery is in the way of.
    void setPaused(bool isPaused);
    /// The adapter has ended what was going on.
    void ended();

  private:
    void proceed();
    void endRound();
    void setFilter();
    void startOrStop(bool isStart);

    BluezBus& bus_;
    MainQueue& queue_;
    QString adapter_;
    std::optional<UUID> wanted_;
    bool isPaused_ = false;
    bool isRunning_ = false;
    bool isCalling_ = false;
    Timer retry_;
    Timer round_;
    /// Answers to calls that were made before a reset are for nobody.
    std::unique_ptr<Lifetime> calls_ = std::make_unique<Lifetime>();
};

}  // namespace orbinex
