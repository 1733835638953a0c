#include "link/bluez/bluez_pairing.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <utility>

#include "link/bluez/bluez_errors.h"
#include "link/bluez/bluez_names.h"

namespace orbinex {

void BluezPairing::pair(const QString& device, const std::string& name, Done done) {
    if (!device_.isEmpty()) cancel(device_);
    device_ = device;
    done_ = std::move(done);
    agent_.serve(device, name);
    bus_.call(Bluez::managerPath, Bluez::agentManager, "RegisterAgent",
              {QVariant::fromValue(QDBusObjectPath(PairingAgent::path)), "DisplayYesNo"},
              BluezBus::ordinaryLimit,
              calls_->guard([this](const BluezBus::Reply& reply) { agentRegistered(reply); }));
}

void BluezPairing::agentRegistered(const BluezBus::Reply& reply) {
    if (reply.error && reply.error->name != QLatin1String("org.bluez.Error.AlreadyExists")) {
        return finish(plainError(*reply.error));
    }
    bus_.call(device_, Bluez::device, "Pair", {}, pairLimit,
              calls_->guard([this](const BluezBus::Reply& answer) { paired(answer); }));
}

void BluezPairing::paired(const BluezBus::Reply& reply) {
    const auto error = reply.error ? pairingError(*reply.error) : std::nullopt;
    if (error) return finish(error);
    checkBond();
}

/// The signal that the device is bonded may come after the answer, and an answer of success is not enough:
/// BlueZ can pair without keeping the keys.
void BluezPairing::checkBond() {
    bus_.call(device_, Bluez::properties, "Get", {Bluez::device, "Bonded"}, BluezBus::ordinaryLimit,
              calls_->guard([this](const BluezBus::Reply& reply) {
                  const bool isBonded = !reply.error && reply.signature == QLatin1String("v") &&
                                        reply.arguments[0].value<QDBusVariant>().variant() == QVariant(true);
                  finish(isBonded ? std::nullopt : std::optional(notPaired()));
              }));
}

void BluezPairing::finish(const std::optional<BluetoothError>& error) {
    const auto done = std::exchange(done_, nullptr);
    unregisterAgent();
    clear();
    done(error);
}

void BluezPairing::cancel(const QString& device) {
    if (device_.isEmpty() || device != device_) return;
    bus_.call(device_, Bluez::device, "CancelPairing", {}, BluezBus::ordinaryLimit,
              [](const BluezBus::Reply&) {});
    unregisterAgent();
    clear();
}

void BluezPairing::unregisterAgent() {
    bus_.call(Bluez::managerPath, Bluez::agentManager, "UnregisterAgent",
              {QVariant::fromValue(QDBusObjectPath(PairingAgent::path))}, BluezBus::ordinaryLimit,
              [](const BluezBus::Reply&) {});
}

void BluezPairing::clear() {
    calls_ = std::make_unique<Lifetime>();
    agent_.rest();
    device_.clear();
    done_ = nullptr;
}

}  // namespace orbinex
