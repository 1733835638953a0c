#include "link/bluez/bluez_connections.h"

#include <algorithm>
#include <utility>

#include "link/bluez/bluez_errors.h"
#include "link/bluez/bluez_names.h"

namespace orbinex {

namespace {

const BluezError endedByDevice{QString(), QStringLiteral("le-connection-abort-by-remote")};

}  // namespace

void BluezConnections::clear() {
    contacts_.clear();
    wasConnecting_ = false;
    calls_ = std::make_unique<Lifetime>();
}

void BluezConnections::endAll() {
    for (const auto& [id, contact] : contacts_) {
        const auto device = devices_.find(id);
        if (!device || (!contact.isConnecting && !device->isConnected)) continue;
        bus_.call(device->path, device->linkInterface, "Disconnect", {}, BluezBus::ordinaryLimit,
                  [](const BluezBus::Reply&) {});
    }
    clear();
}

BluezConnections::Contact* BluezConnections::contact(const UUID& device) {
    const auto found = contacts_.find(device);
    return found == contacts_.end() ? nullptr : &found->second;
}

void BluezConnections::connect(const Peripheral& device, Initiative initiative) {
    auto& contact = contacts_[device.identifier];
    contact.name = device.name;
    if (initiative == Initiative::user) contact.restsUntil = {};
    if (!contact.wish || initiative == Initiative::user) contact.wish = initiative;
    // One that stands already is reported again.
    if (!contact.isCancelling) contact.isReported = false;
    later(device.identifier);
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
    return isLinked(device);
}

bool BluezConnections::isLinked(const UUID& device) const {
    const auto object = devices_.find(device);
    if (!object || !object->isConnected) return false;
    const auto found = contacts_.find(device);
    return object->classic != ClassicLink::possible ||
           (found != contacts_.end() && found->second.isLowEnergy);
}

Initiative BluezConnections::initiative(const UUID& device) const {
    const auto found = contacts_.find(device);
    return found == contacts_.end() ? Initiative::program : found->second.initiative;
}

std::string BluezConnections::name(const UUID& device) const {
    const auto found = contacts_.find(device);
    return found == contacts_.end() ? std::string() : found->second.name;
}

void BluezConnections::setPairing(const UUID& device, bool isPairing) {
    auto* const contact = this->contact(device);
    if (!contact) return;
    contact->isPairing = isPairing;
    contact->hasPaired = true;
    later(device);
}

bool BluezConnections::noteBond(const UUID& device) {
    auto* const contact = this->contact(device);
    if (!contact || contact->hasPaired || (!contact->isConnecting && !contact->connectedSince)) return false;
    contact->isBondUnasked = true;
    return true;
}

bool BluezConnections::isBondUnasked(const UUID& device) const {
    const auto found = contacts_.find(device);
    return found != contacts_.end() && found->second.isBondUnasked;
}

/// Not at once: the link is not called from within its own calls.
void BluezConnections::later(const UUID& device) {
    queue_.post(calls_->guard([this, device] { review(device); }));
}

void BluezConnections::reviewAll() {
    for (const auto& [id, contact] : contacts_) later(id);
}

void BluezConnections::review(const UUID& device) {
    noteConnection(device);
    // Each step is taken in what the one before has left, which may be nothing.
    for (;;) {
        auto* const contact = this->contact(device);
        if (!contact) return;
        if (!perform(nextConnectStep(facts(device, *contact)), device)) return;
    }
}

/// Where the bearers are not told apart, the end of one shows in services that are no longer resolved.
void BluezConnections::noteBearer(Contact& contact, const std::optional<BluezDevice>& object) {
    const bool areResolved = object && object->areServicesResolved;
    const bool haveEnded = std::exchange(contact.wereServicesResolved, areResolved) && !areResolved;
    if (!object || !object->isConnected || haveEnded) contact.isLowEnergy = false;
}

/// A bonded device that ends the connection before it has told its services may have forgotten the pairing.
void BluezConnections::noteConnection(const UUID& device) {
    auto* const contact = this->contact(device);
    if (!contact) return;
    const auto object = devices_.find(device);
    noteBearer(*contact, object);
    if (isLinked(device)) {
        if (!contact->connectedSince) contact->connectedSince = queue_.uptime();
        if (object->areServicesResolved) contact->promptFailures = 0;
        return;
    }
    if (contact->isReported || !std::exchange(contact->connectedSince, std::nullopt)) return;
    contact->hasDropped = true;
    contact->restsUntil = queue_.uptime() + restAfterFailure;
    if (contact->isBondUnasked && contact->wish && !contact->isCancelling) {
        contact->wish.reset();
        const auto error = notPaired();
        return handlers_.onFailed(device, &error);
    }
    // While the call is under way, its answer tells.
    if (object && object->isBonded && contact->wish && !contact->isConnecting && !contact->isCancelling) {
        failedAtOnce(device, endedByDevice);
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
    facts.isConnected = isLinked(device);
    facts.isProven = !object || !object->isBonded || object->areServicesResolved ||
                     (contact.connectedSince && facts.now - *contact.connectedSince >= proofTime);
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
        case ConnectStep::waitForProof:
            contact.rest = queue_.after(*contact.connectedSince + proofTime - queue_.uptime(),
                                        [this, device] { review(device); });
            return false;
        case ConnectStep::connect: callConnect(device); return true;
        case ConnectStep::disconnect: callDisconnect(device); return true;
        case ConnectStep::reportConnected:
            contact.initiative = *std::exchange(contact.wish, std::nullopt);
            contact.isReported = true;
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
    contact.hasPaired = false;
    contact.isBondUnasked = false;
    contact.hasDropped = false;
    contact.callBegan = queue_.uptime();
    tellConnecting();
    const auto object = devices_.find(device);
    bus_.call(
        object->path, object->linkInterface, "Connect", {}, connectLimit,
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
    if (reply.error || contact->hasDropped) return connectEnded(device, reply);
    // The signal may come later, or never; a cancel in between must not take it for not connected.
    handlers_.askWhetherConnected(device,
                                  calls_->guard([this, device, reply] { connectEnded(device, reply); }));
}

void BluezConnections::connectEnded(const UUID& device, const BluezBus::Reply& reply) {
    auto* const contact = this->contact(device);
    if (!contact) return;
    contact->isConnecting = false;
    contact->isLowEnergy = !reply.error && !contact->hasDropped;
    tellConnecting();
    const auto object = devices_.find(device);
    const bool isBonded = object && object->isBonded;
    // Also after success that has led to nothing.
    contact->restsUntil = queue_.uptime() + restAfterFailure;
    if (contact->wish && !contact->isCancelling) {
        const auto elapsed = queue_.uptime() - contact->callBegan;
        const auto error = reply.error.value_or(BluezError{});
        const auto failure =
            reply.error ? connectFailure(error, isBonded, elapsed) : ConnectFailure::transient;
        if (failure == ConnectFailure::perhapsForgotten || (isBonded && contact->hasDropped)) {
            failedAtOnce(device, error);
        } else if (failure == ConnectFailure::final) {
            contact->wish.reset();
            const auto told = plainError(error);
            handlers_.onFailed(device, &told);
        }
    }
    review(device);
}

/// Once it is known that the pairing is forgotten, every further failure says so.
void BluezConnections::failedAtOnce(const UUID& device, const BluezError& error) {
    auto& contact = contacts_.at(device);
    if (++contact.promptFailures < failuresOfForgottenPairing) return;
    contact.wish.reset();
    const auto told = forgottenPairing(error);
    handlers_.onFailed(device, &told);
}

void BluezConnections::callDisconnect(const UUID& device) {
    auto& contact = contacts_.at(device);
    const auto object = devices_.find(device);
    contact.isDisconnecting = true;
    bus_.call(object ? object->path : QString(), object ? object->linkInterface : Bluez::device, "Disconnect",
              {}, BluezBus::ordinaryLimit, calls_->guard([this, device](const BluezBus::Reply&) {
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
    const bool wasShort =
        contact.connectedSince && queue_.uptime() - *contact.connectedSince <= promptFailure;
    contact.connectedSince.reset();
    rest(contact, isOurs ? restAfterDrop : wasShort ? restAfterFailure : std::chrono::seconds(0));
    // BlueZ gives no reason; here it is known.
    const bool isForgotten = !isOurs && contact.promptFailures >= failuresOfForgottenPairing;
    const bool isUnasked = !isOurs && contact.isBondUnasked;
    const auto error = isForgotten ? forgottenPairing(endedByDevice) : notPaired();
    handlers_.onDisconnected(device, isForgotten || isUnasked ? &error : nullptr);
}

}  // namespace orbinex
