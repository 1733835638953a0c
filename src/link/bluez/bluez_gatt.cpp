#include "link/bluez/bluez_gatt.h"

#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <algorithm>
#include <utility>

#include "link/bluez/bluez_errors.h"
#include "link/bluez/bluez_names.h"

namespace orbinex {

BluezGatt::BluezGatt(BluezBus& bus, MainQueue& queue, const BluezObjects& objects,
                     const BluezDevices& devices, BluezConnections& connections, BluezPairing& pairing,
                     std::function<void()> askForObjects)
    : bus_(bus),
      queue_(queue),
      objects_(objects),
      devices_(devices),
      connections_(connections),
      pairing_(pairing),
      askForObjects_(std::move(askForObjects)) {}

void BluezGatt::clear() {
    pairing_.clear();
    conversations_.clear();
}

BluezGatt::Conversation* BluezGatt::conversation(const UUID& device) {
    const auto found = conversations_.find(device);
    return found == conversations_.end() ? nullptr : &found->second;
}

BluezGatt::Channel* BluezGatt::channel(const UUID& device, const UUID& characteristic) {
    auto* const conversation = this->conversation(device);
    if (!conversation) return nullptr;
    const auto found = conversation->channels.find(characteristic);
    return found == conversation->channels.end() ? nullptr : &found->second;
}

void BluezGatt::takePending(const UUID& device) {
    const auto* const conversation = this->conversation(device);
    if (!conversation) return;
    std::vector<UUID> characteristics;
    for (const auto& [uuid, channel] : conversation->channels) characteristics.push_back(uuid);
    for (const auto& uuid : characteristics) {
        // A socket takes a turn's worth at a time, and whoever is told may end the conversation.
        for (int turn = 0; turn < maximumPendingTurns; ++turn) {
            auto* const channel = this->channel(device, uuid);
            if (!channel || !channel->socket) break;
            channel->socket->drain();
        }
    }
}

void BluezGatt::end(const UUID& device) {
    const auto found = conversations_.find(device);
    if (found == conversations_.end()) return;
    if (const auto object = devices_.find(device)) pairing_.cancel(object->path);
    for (auto& [uuid, channel] : found->second.channels) unsubscribe(channel);
    conversations_.erase(found);
}

// Services

void BluezGatt::discoverServices(const UUID& device, std::span<const UUID> services) {
    auto& conversation = conversations_[device];
    conversation.peripheral = std::make_shared<const Peripheral>(devices_.peripheral(device));
    conversation.question.emplace(services.begin(), services.end());
    queue_.post(conversation.calls->guard([this, device] { review(device); }));
}

void BluezGatt::review(const UUID& device) {
    auto* const conversation = this->conversation(device);
    if (!conversation) return;
    if (conversation->question && !conversation->isAsking && areServicesTold(device)) {
        // That they are resolved may be told before they are.
        conversation->isAsking = true;
        askForObjects_();
    }
    dropWithdrawnServices(device);
}

/// Those of classic Bluetooth are resolved as well, and then nothing tells when Low Energy's are, but that
/// they come.
bool BluezGatt::areServicesTold(const UUID& device) {
    auto& conversation = conversations_.at(device);
    const auto object = devices_.find(device);
    if (!object || !object->areServicesResolved) return false;
    if (object->classic == ClassicLink::none || conversation.isOutOfPatience) return true;
    const auto isThere = [&](const UUID& uuid) {
        return !findService(objects_, object->path, uuid).isEmpty();
    };
    if (std::ranges::all_of(*conversation.question, isThere)) return true;
    if (!conversation.patience.isActive()) {
        conversation.patience = queue_.after(servicesPatience, [this, device] {
            conversations_.at(device).isOutOfPatience = true;
            review(device);
        });
    }
    return false;
}

void BluezGatt::objectsTold() {
    for (auto& [device, conversation] : conversations_) {
        queue_.post(conversation.calls->guard([this, device = device] {
            const bool wasAsking = std::exchange(conversations_.at(device).isAsking, false);
            if (wasAsking && areServicesTold(device)) answerServices(device);
            review(device);
        }));
    }
}

void BluezGatt::answerServices(const UUID& device) {
    auto& conversation = conversations_.at(device);
    const auto question = std::exchange(conversation.question, std::nullopt).value_or(std::vector<UUID>());
    const auto object = devices_.find(device);
    std::vector<UUID> answer;
    conversation.services.clear();
    conversation.channels.clear();
    for (const auto& uuid : question) {
        const auto path = findService(objects_, object->path, uuid);
        if (path.isEmpty()) continue;
        conversation.services.emplace(uuid, path);
        answer.push_back(uuid);
    }
    const auto peripheral = conversation.peripheral;
    if (delegate_) delegate_->servicesDiscovered(*peripheral, answer, nullptr);
}

void BluezGatt::dropWithdrawnServices(const UUID& device) {
    auto* const conversation = this->conversation(device);
    const auto object = devices_.find(device);
    if (!conversation || !object || !object->isConnected) return;
    std::vector<UUID> withdrawn;
    for (const auto& [uuid, path] : conversation->services) {
        // One that is withdrawn comes back at another path.
        if (findService(objects_, object->path, uuid) == path) continue;
        withdrawn.push_back(uuid);
        const QString below = path + QLatin1Char('/');
        std::erase_if(conversation->channels,
                      [&](const auto& entry) { return entry.second.path.startsWith(below); });
    }
    for (const auto& uuid : withdrawn) conversation->services.erase(uuid);
    const auto peripheral = conversation->peripheral;
    if (!withdrawn.empty() && delegate_) delegate_->servicesInvalidated(*peripheral, withdrawn);
}

void BluezGatt::discoverCharacteristics(const UUID& device, const UUID& service,
                                        std::span<const UUID> wanted) {
    auto* const conversation = this->conversation(device);
    if (!conversation) return;
    const auto found = conversation->services.find(service);
    if (found == conversation->services.end()) return;
    std::vector<Characteristic> answer;
    for (const auto& known : characteristicsOf(objects_, found->second)) {
        if (std::ranges::find(wanted, known.uuid) == wanted.end()) continue;
        auto& channel = conversation->channels[known.uuid];
        channel.path = known.path;
        channel.canWriteWithoutResponse = known.canWriteWithoutResponse;
        channel.offersNotifySocket = known.offersNotifySocket;
        answer.push_back({known.uuid, known.canWriteWithoutResponse});
    }
    queue_.post(conversation->calls->guard([this, device, service, answer = std::move(answer)] {
        const auto peripheral = conversations_.at(device).peripheral;
        if (delegate_) delegate_->characteristicsDiscovered(*peripheral, service, answer, nullptr);
    }));
}

// Values

void BluezGatt::reportValue(const UUID& device, const UUID& characteristic, ByteView value,
                            const BluetoothError* error) {
    const auto* const conversation = this->conversation(device);
    if (!conversation || !delegate_) return;
    const auto peripheral = conversation->peripheral;
    delegate_->valueUpdated(*peripheral, characteristic, value, error);
}

void BluezGatt::readValue(const UUID& device, const UUID& characteristic) {
    const auto object = devices_.find(device);
    if (!object || !channel(device, characteristic)) return;
    const bool isUnasked = connections_.isBondUnasked(device);
    if (object->isBonded && !isUnasked) {
        read(device, characteristic);
    } else if (!isUnasked && connections_.initiative(device) == Initiative::user) {
        pairThenRead(device, characteristic);
    } else {
        queue_.post(conversations_.at(device).calls->guard([this, device, characteristic] {
            const auto error = notPaired();
            reportValue(device, characteristic, {}, &error);
        }));
    }
}

void BluezGatt::pairThenRead(const UUID& device, const UUID& characteristic) {
    const auto path = devices_.find(device)->path;
    connections_.setPairing(device, true);
    pairing_.pair(path, connections_.name(device),
                  conversations_.at(device).calls->guard(
                      [this, device, characteristic](const std::optional<BluetoothError>& error) {
                          if (error) {
                              reportValue(device, characteristic, {}, &*error);
                          } else if (channel(device, characteristic)) {
                              read(device, characteristic);
                          }
                          connections_.setPairing(device, false);
                      }));
}

void BluezGatt::read(const UUID& device, const UUID& characteristic) {
    bus_.call(
        channel(device, characteristic)->path, Bluez::characteristic, "ReadValue", {QVariantMap()},
        requestLimit,
        conversations_.at(device).calls->guard([this, device, characteristic](const BluezBus::Reply& reply) {
            valueRead(device, characteristic, reply);
        }));
}

void BluezGatt::valueRead(const UUID& device, const UUID& characteristic, const BluezBus::Reply& reply) {
    const auto object = devices_.find(device);
    if (reply.error || reply.signature != QLatin1String("ay")) {
        const auto error =
            attributeError(reply.error.value_or(BluezError{QString(), QStringLiteral("No value")}),
                           object && object->isBonded);
        reportValue(device, characteristic, {}, &error);
        return;
    }
    const auto bytes = reply.arguments[0].toByteArray();
    reportValue(
        device, characteristic,
        {reinterpret_cast<const std::uint8_t*>(bytes.constData()), static_cast<std::size_t>(bytes.size())},
        nullptr);
}

void BluezGatt::writeValue(const UUID& device, const UUID& characteristic, ByteView value, WriteType type) {
    auto* const conversation = this->conversation(device);
    if (!conversation || !channel(device, characteristic)) return;
    const Write write{characteristic,
                      {reinterpret_cast<const char*>(value.data()), static_cast<qsizetype>(value.size())},
                      type};
    if (conversation->unansweredWrites < maximumUnansweredWrites) {
        callWrite(device, write);
    } else if (conversation->waitingWrites.size() < maximumWaitingWrites) {
        conversation->waitingWrites.push_back(write);
    }
}

void BluezGatt::callWrite(const UUID& device, const Write& write) {
    const auto* const channel = this->channel(device, write.characteristic);
    if (!channel) return;
    auto& conversation = conversations_.at(device);
    ++conversation.unansweredWrites;
    const char* const kind = write.type == WriteType::withoutResponse ? "command" : "request";
    bus_.call(channel->path, Bluez::characteristic, "WriteValue", {write.value, QVariantMap{{"type", kind}}},
              requestLimit, conversation.calls->guard([this, device](const BluezBus::Reply&) {
                  auto& answered = conversations_.at(device);
                  --answered.unansweredWrites;
                  if (answered.waitingWrites.empty()) return;
                  const Write next = answered.waitingWrites.front();
                  answered.waitingWrites.pop_front();
                  callWrite(device, next);
              }));
}

// Notifications

void BluezGatt::reportNotification(const UUID& device, const UUID& characteristic, bool isNotifying,
                                   const BluetoothError* error) {
    const auto* const conversation = this->conversation(device);
    if (!conversation || !delegate_) return;
    const auto peripheral = conversation->peripheral;
    delegate_->notificationStateUpdated(*peripheral, characteristic, isNotifying, error);
}

void BluezGatt::setNotify(const UUID& device, const UUID& characteristic, bool enabled) {
    auto* const channel = this->channel(device, characteristic);
    if (!channel) return;
    const auto object = devices_.find(device);
    channel->isWanted = enabled;
    if (enabled && object && object->isBonded && !connections_.isBondUnasked(device)) {
        acquire(device, characteristic);
        return;
    }
    unsubscribe(*channel);
    queue_.post(conversations_.at(device).calls->guard([this, device, characteristic, enabled] {
        const auto error = notPaired();
        reportNotification(device, characteristic, false, enabled ? &error : nullptr);
    }));
}

/// A socket costs bluetoothd and us a fraction of what signals cost.
void BluezGatt::acquire(const UUID& device, const UUID& characteristic) {
    const auto* const channel = this->channel(device, characteristic);
    if (!channel->offersNotifySocket) return startNotify(device, characteristic);
    bus_.call(
        channel->path, Bluez::characteristic, "AcquireNotify", {QVariantMap()}, requestLimit,
        conversations_.at(device).calls->guard([this, device, characteristic](const BluezBus::Reply& reply) {
            acquired(device, characteristic, reply);
        }));
}

void BluezGatt::acquired(const UUID& device, const UUID& characteristic, const BluezBus::Reply& reply) {
    auto* const channel = this->channel(device, characteristic);
    if (!channel || !channel->isWanted) return;
    // Another program may have the socket.
    if (reply.error || reply.signature != QLatin1String("hq")) return startNotify(device, characteristic);
    const auto descriptor = reply.arguments[0].value<QDBusUnixFileDescriptor>();
    if (!descriptor.isValid()) return startNotify(device, characteristic);
    channel->socket = std::make_unique<NotifySocket>(
        descriptor,
        [this, device, characteristic](ByteView value) {
            reportValue(device, characteristic, value, nullptr);
        },
        [this, device, characteristic] { socketEnded(device, characteristic); });
    reportNotification(device, characteristic, true, nullptr);
}

void BluezGatt::startNotify(const UUID& device, const UUID& characteristic) {
    const auto path = channel(device, characteristic)->path;
    bus_.call(path, Bluez::characteristic, "StartNotify", {}, requestLimit,
              conversations_.at(device).calls->guard(
                  [this, device, characteristic, path](const BluezBus::Reply& reply) {
                      auto* const channel = this->channel(device, characteristic);
                      if (!channel || !channel->isWanted) return;
                      const auto known = readCharacteristic(objects_, path);
                      // An earlier session of ours may have outlived its connection.
                      const bool isAlready = reply.error && known && known->isNotifying &&
                                             reply.error->name == QLatin1String("org.bluez.Error.InProgress");
                      const auto object = devices_.find(device);
                      if (reply.error && !isAlready) {
                          const auto error = attributeError(*reply.error, object && object->isBonded);
                          return reportNotification(device, characteristic, false, &error);
                      }
                      channel->isStarted = true;
                      reportNotification(device, characteristic, true, nullptr);
                  }));
}

/// The connection may have ended, or the service gone, and the news be still to come.
void BluezGatt::socketEnded(const UUID& device, const UUID& characteristic) {
    auto* const channel = this->channel(device, characteristic);
    if (!channel) return;
    channel->socket.reset();
    channel->resubscription = queue_.after(resubscribeDelay, [this, device, characteristic] {
        if (connections_.isConnected(device)) acquire(device, characteristic);
    });
}

void BluezGatt::unsubscribe(Channel& channel) {
    channel.socket.reset();
    channel.resubscription.cancel();
    if (!std::exchange(channel.isStarted, false)) return;
    bus_.call(channel.path, Bluez::characteristic, "StopNotify", {}, BluezBus::ordinaryLimit,
              [](const BluezBus::Reply&) {});
}

void BluezGatt::valueChanged(const QString& path, const QVariantMap& changed) {
    const auto value = changed.constFind(QStringLiteral("Value"));
    if (value == changed.constEnd() || value->metaType() != QMetaType::fromType<QByteArray>()) return;
    const auto device = devices_.identifierAt(path);
    auto* const conversation = device ? this->conversation(*device) : nullptr;
    if (!conversation) return;
    for (const auto& [uuid, channel] : conversation->channels) {
        if (!channel.isStarted || channel.path != path) continue;
        const auto bytes = value->toByteArray();
        const UUID characteristic = uuid;
        reportValue(*device, characteristic,
                    {reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                     static_cast<std::size_t>(bytes.size())},
                    nullptr);
        return;
    }
}

}  // namespace orbinex
