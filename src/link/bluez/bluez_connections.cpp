#include "link/bluez/bluez_connections.h"

#include <algorithm>
#include <utility>

#include "link/bluez/bluez_errors.h"
#include "link/bluez/bluez_names.h"

namespace orbinex {

void BluezConnections::clear() {
    contacts_.clear();
    wasConnecting_ = false;
    calls_ = std::make_unique<Lifetime>();
}

void BluezConnections::endAll() {
    for (const auto& [id, contact] : contacts_) {
        const auto device = devices_.find(id);
        if (!device || (!contact.isConnecting && !device->isConnected)) continue;
        bus_.call(device->path, Bluez::device, "Disconnect", {}, BluezBus::ordinaryLimit,
                  [](const BluezBus::Reply&) {});
    }
    clear();
}

BluezConnections::Contact* BluezConnections::contact(const UUID& device) {
    const auto found = contacts_.find(device);
    return found == contacts_.end() ? nullptr : &found->second;
}

void BluezConnections::connect(const UUID& device, Initiative initiative) {
    auto& contact = contacts_[device];
    if (initiative == Initiative::user) contact.restsUntil = {};
    if (!contact.wish || initiative == Initiative::user) contact.wish = initiative;
    // One that stands already is reported again.
    if (!contact.isCancelling) contact.isReported = false;
    later(device);
}

void BluezConnections::cancel(const UUID& device) {
    auto* const contact = this->contact(device);
    if (!contact) return;
    contact->wish.reset();
    contact->isCancelling = true;
    contact->restsUntil = {};
    later(device);
}

bool BluezConnections::isConnected(const UUID& device) const {
    const auto found = contacts_.find(device);
    if (found == contacts_.end() || !found->second.isReported) return false;
    const auto object = devices_.find(device);
    return object && object->isConnected;
}

Initiative BluezConnections::initiative(const UUID& device) const {
    const auto found = contacts_.find(device);
    return found == contacts_.end() ? Initiative::program : found->second.initiative;
}

void BluezConnections::setPairing(const UUID& device, bool isPairing) {
    auto* const contact = this->contact(device);
    if (!contact) return;
    contact->isPairing = isPairing;
    later(device);
}

void BluezConnections::established(const UUID& device) {
    auto* const contact = this->contact(device);
    if (!contact) return;
    contact->isProven = true;
    contact->promptFailures = 0;
}

/// Not at once: the link is not called from within its own calls.
void BluezConnections::later(const UUID& device) {
    queue_.post(calls_->guard([this, device] { review(device); }));
}

void BluezConnections::reviewAll() {
    for (const auto& [id, contact] : contacts_) later(id);
}

void BluezConnections::review(const UUID& device) {
    // Each step is taken in what the one before has left, which may be nothing.
    for (;;) {
        auto* const contact = this->contact(device);
        if (!contact) return;
        if (!perform(nextConnectStep(facts(device, *contact)), device)) return;
    }
}

ConnectFacts BluezConnections::facts(const UUID& device, const Contact& contact) const {
    const auto object = devices_.find(device);
    ConnectFacts facts;
    facts.isWanted = contact.wish.has_value();
    facts.isUsersWish = contact.wish == Initiative::user;
    facts.isKnown = object.has_value();
    facts.now = queue_.uptime();
    facts.isInSight = sightings_.isInSight(device, facts.now);
    facts.isConnected = object && object->isConnected;
    facts.isReported = contact.isReported;
    facts.isPairing = contact.isPairing;
    facts.isConnecting = contact.isConnecting;
    facts.isCancelling = contact.isCancelling;
    facts.isDisconnecting = contact.isDisconnecting;
    facts.restsUntil = contact.restsUntil;
    return facts;
}

/// False when nothing is to be done after it for now.
bool BluezConnections::perform(ConnectStep step, const UUID& device) {
    auto& contact = contacts_.at(device);
    switch (step) {
        case ConnectStep::none: return false;
        case ConnectStep::waitForRest:
            contact.rest =
                queue_.after(contact.restsUntil - queue_.uptime(), [this, device] { review(device); });
            return false;
        case ConnectStep::connect: callConnect(device); return true;
        case ConnectStep::disconnect: callDisconnect(device); return true;
        case ConnectStep::reportConnected:
            contact.initiative = *std::exchange(contact.wish, std::nullopt);
            contact.isReported = true;
            contact.isProven = false;
            contact.began = queue_.uptime();
            handlers_.onConnected(device);
            return true;
        case ConnectStep::reportDisconnected: reportDisconnected(device); return true;
        case ConnectStep::endCancelling:
            contact.isCancelling = false;
            rest(contact, restAfterDrop);
            handlers_.onDisconnected(device, nullptr);
            return true;
    }
    return false;
}

void BluezConnections::rest(Contact& contact, std::chrono::nanoseconds time) {
    if (contact.wish == Initiative::user) time = {};
    contact.restsUntil = queue_.uptime() + time;
}

void BluezConnections::callConnect(const UUID& device) {
    auto& contact = contacts_.at(device);
    contact.isConnecting = true;
    contact.began = queue_.uptime();
    tellConnecting();
    bus_.call(
        devices_.find(device)->path, Bluez::device, "Connect", {}, connectLimit,
        calls_->guard([this, device](const BluezBus::Reply& reply) { connectAnswered(device, reply); }));
}

void BluezConnections::tellConnecting() {
    const bool isConnecting =
        std::ranges::any_of(contacts_, [](const auto& entry) { return entry.second.isConnecting; });
    if (std::exchange(wasConnecting_, isConnecting) != isConnecting) handlers_.onConnecting(isConnecting);
}

void BluezConnections::connectAnswered(const UUID& device, const BluezBus::Reply& reply) {
    auto* const contact = this->contact(device);
    if (!contact) return;
    contact->isConnecting = false;
    tellConnecting();
    const auto object = devices_.find(device);
    const bool isBonded = object && object->isBonded;
    // Also after success, of which the signal may come later, or never.
    contact->restsUntil = queue_.uptime() + restAfterFailure;
    if (!reply.error) handlers_.askWhetherConnected(device);
    if (reply.error && contact->wish && !contact->isCancelling) {
        const auto failure = connectFailure(*reply.error, isBonded, queue_.uptime() - contact->began);
        contact->promptFailures =
            failure == ConnectFailure::perhapsForgotten ? contact->promptFailures + 1 : 0;
        const bool isForgotten = contact->promptFailures >= failuresOfForgottenPairing;
        if (failure == ConnectFailure::final || isForgotten) {
            contact->wish.reset();
            contact->promptFailures = 0;
            const auto error = isForgotten ? forgottenPairing(*reply.error) : plainError(*reply.error);
            handlers_.onFailed(device, &error);
        }
    }
    review(device);
}

void BluezConnections::callDisconnect(const UUID& device) {
    auto& contact = contacts_.at(device);
    const auto object = devices_.find(device);
    contact.isDisconnecting = true;
    bus_.call(object ? object->path : QString(), Bluez::device, "Disconnect", {}, BluezBus::ordinaryLimit,
              calls_->guard([this, device](const BluezBus::Reply&) {
                  auto* const answered = this->contact(device);
                  if (!answered) return;
                  answered->isDisconnecting = false;
                  // The signal that it is gone may be still to come.
                  if (answered->isCancelling) answered->restsUntil = queue_.uptime() + restAfterDisconnect;
                  review(device);
              }));
}

void BluezConnections::reportDisconnected(const UUID& device) {
    auto& contact = contacts_.at(device);
    contact.isReported = false;
    contact.isPairing = false;
    const bool isOurs = std::exchange(contact.isCancelling, false);
    const bool wasShort = queue_.uptime() - contact.began <= promptFailure;
    rest(contact, isOurs ? restAfterDrop : wasShort ? restAfterFailure : std::chrono::seconds(0));
    std::optional<BluetoothError> error;
    const auto object = devices_.find(device);
    if (!isOurs && !contact.isProven && wasShort && object && object->isBonded &&
        ++contact.promptFailures >= failuresOfForgottenPairing) {
        contact.promptFailures = 0;
        error = forgottenPairing({QString(), QStringLiteral("The device ended the connection")});
    }
    handlers_.onDisconnected(device, error ? &*error : nullptr);
}

}  // namespace orbinex
