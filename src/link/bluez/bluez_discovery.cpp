#include "link/bluez/bluez_discovery.h"

#include "link/bluez/bluez_names.h"

namespace orbinex {

void BluezDiscovery::useAdapter(const QString& adapter) {
    calls_ = std::make_unique<Lifetime>();
    adapter_ = adapter;
    wanted_.reset();
    isPaused_ = false;
    isRunning_ = false;
    isCalling_ = false;
    retry_.cancel();
    round_.cancel();
}

void BluezDiscovery::end() {
    if (!adapter_.isEmpty() && (isRunning_ || isCalling_)) {
        bus_.call(adapter_, Bluez::adapter, "StopDiscovery", {}, BluezBus::ordinaryLimit,
                  [](const BluezBus::Reply&) {});
    }
    useAdapter({});
}

void BluezDiscovery::want(const std::optional<UUID>& service) {
    wanted_ = service;
    proceed();
}

void BluezDiscovery::setPaused(bool isPaused) {
    isPaused_ = isPaused;
    proceed();
}

void BluezDiscovery::ended() {
    isRunning_ = false;
    proceed();
}

void BluezDiscovery::proceed() {
    const bool isToRun = wanted_ && !isPaused_;
    if (adapter_.isEmpty() || isCalling_ || retry_.isActive() || isToRun == isRunning_) return;
    isCalling_ = true;
    if (isToRun) {
        setFilter();
    } else {
        startOrStop(false);
    }
}

void BluezDiscovery::endRound() {
    if (isCalling_ || !isRunning_) return;
    isCalling_ = true;
    startOrStop(false);
}

void BluezDiscovery::setFilter() {
    const QVariantMap filter{{"Transport", "le"},
                             {"UUIDs", QStringList{QString::fromStdString(wanted_->text()).toLower()}},
                             {"DuplicateData", true}};
    // A filter that is refused costs reports of devices that are not ours, nothing more.
    bus_.call(adapter_, Bluez::adapter, "SetDiscoveryFilter", {filter}, BluezBus::ordinaryLimit,
              calls_->guard([this](const BluezBus::Reply&) { startOrStop(true); }));
}

void BluezDiscovery::startOrStop(bool isStart) {
    bus_.call(adapter_, Bluez::adapter, isStart ? "StartDiscovery" : "StopDiscovery", {},
              BluezBus::ordinaryLimit, calls_->guard([this, isStart](const BluezBus::Reply& reply) {
                  isCalling_ = false;
                  round_.cancel();
                  const auto& error = reply.error;
                  const bool isAlready =
                      error && (error->name == QLatin1String("org.bluez.Error.InProgress") ||
                                error->text == QLatin1String("No discovery started"));
                  if (error && !isAlready) {
                      // A round that would not end is still to be ended.
                      retry_ = queue_.after(retryInterval, [this] {
                          proceed();
                          endRound();
                      });
                      return;
                  }
                  isRunning_ = isStart;
                  if (isRunning_) round_ = queue_.after(round, [this] { endRound(); });
                  proceed();
              }));
}

}  // namespace orbinex
