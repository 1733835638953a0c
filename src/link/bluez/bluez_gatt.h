#pragma once

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/lifetime.h"
#include "base/main_queue.h"
#include "link/bluetooth_central.h"
#include "link/bluez/bluez_bus.h"
#include "link/bluez/bluez_connections.h"
#include "link/bluez/bluez_devices.h"
#include "link/bluez/bluez_pairing.h"
#include "link/bluez/notify_socket.h"

namespace orbinex {

/// Services and characteristics of connected devices. Nothing is read from or subscribed to on a device that
/// is not bonded: BlueZ encrypts the connection of a bonded one before it uses it, and another may be
/// anybody.
class BluezGatt {
  public:
    /// The Attribute Protocol gives up on a request after 30 s (Core Specification, Vol 3, Part F, 3.3.3).
    static constexpr std::chrono::seconds requestLimit{35};
    /// So long after it is connected over both bearers, a device's services are taken for all that it has.
    static constexpr std::chrono::seconds servicesPatience{6};
    /// A subscription that ends on a standing connection is made anew after this, unless that ends too.
    static constexpr std::chrono::seconds resubscribeDelay{1};
    /// Writes that are with BlueZ; the bus itself allows 128 calls without an answer.
    static constexpr int maximumUnansweredWrites = 64;
    /// Writes that wait for those; what goes beyond is dropped, as the radio would. A session of some hundred
    /// tracks is told in one go.
    static constexpr std::size_t maximumWaitingWrites = 512;
    /// Of each socket when the connection has ended; more than the kernel keeps for one.
    static constexpr int maximumPendingTurns = 16;

    /// `askForObjects` is to have bluetoothd tell all its objects; objectsTold() follows.
    BluezGatt(BluezBus& bus, MainQueue& queue, const BluezObjects& objects, const BluezDevices& devices,
              BluezConnections& connections, BluezPairing& pairing, std::function<void()> askForObjects);

    /// Who is told; null is nobody.
    void setDelegate(BluetoothCentral::Delegate* delegate) { delegate_ = delegate; }
    /// Forgets everything without a word or a call.
    void clear();

    void discoverServices(const UUID& device, std::span<const UUID> services);
    void discoverCharacteristics(const UUID& device, const UUID& service, std::span<const UUID> wanted);
    void readValue(const UUID& device, const UUID& characteristic);
    void setNotify(const UUID& device, const UUID& characteristic, bool enabled);
    void writeValue(const UUID& device, const UUID& characteristic, ByteView value, WriteType type);
    /// Passes on what the device had sent before the connection ended.
    void takePending(const UUID& device);
    /// The connection has ended, or is no longer wanted.
    void end(const UUID& device);

    /// Properties of the device, or its services, are not what they were.
    void review(const UUID& device);
    void objectsTold();
    /// A characteristic has told its value.
    void valueChanged(const QString& path, const QVariantMap& changed);

  private:
    struct Channel {
        QString path;
        bool canWriteWithoutResponse = false;
        bool offersNotifySocket = false;
        bool isWanted = false;
        bool isStarted = false;  ///< notifications come as signals
        std::unique_ptr<NotifySocket> socket;
        Timer resubscription;
    };
    struct Write {
        UUID characteristic;
        QByteArray value;
        WriteType type;
    };
    /// With one connected device.
    struct Conversation {
        /// Shared with a call of the delegate, which may end the conversation.
        std::shared_ptr<const Peripheral> peripheral;
        std::optional<std::vector<UUID>> question;  ///< services that are asked for
        bool isAsking = false;                      ///< for the objects that the answer is found in
        bool isOutOfPatience = false;
        Timer patience;  ///< with services that may be classic Bluetooth's
        std::map<UUID, QString> services;
        std::map<UUID, Channel> channels;
        int unansweredWrites = 0;
        std::deque<Write> waitingWrites;
        /// Answers to calls of an earlier conversation are for nobody.
        std::unique_ptr<Lifetime> calls = std::make_unique<Lifetime>();
    };

    [[nodiscard]] Conversation* conversation(const UUID& device);
    [[nodiscard]] Channel* channel(const UUID& device, const UUID& characteristic);
    [[nodiscard]] bool areServicesTold(const UUID& device);
    void answerServices(const UUID& device);
    void dropWithdrawnServices(const UUID& device);
    void read(const UUID& device, const UUID& characteristic);
    void pairThenRead(const UUID& device, const UUID& characteristic);
    void valueRead(const UUID& device, const UUID& characteristic, const BluezBus::Reply& reply);
    void callWrite(const UUID& device, const Write& write);
    void acquire(const UUID& device, const UUID& characteristic);
    void acquired(const UUID& device, const UUID& characteristic, const BluezBus::Reply& reply);
    void startNotify(const UUID& device, const UUID& characteristic);
    void socketEnded(const UUID& device, const UUID& characteristic);
    void unsubscribe(Channel& channel);
    void reportValue(const UUID& device, const UUID& characteristic, ByteView value,
                     const BluetoothError* error);
    void reportNotification(const UUID& device, const UUID& characteristic, bool isNotifying,
                            const BluetoothError* error);

    BluezBus& bus_;
    MainQueue& queue_;
    const BluezObjects& objects_;
    const BluezDevices& devices_;
    BluezConnections& connections_;
    BluezPairing& pairing_;
    std::function<void()> askForObjects_;
    BluetoothCentral::Delegate* delegate_ = nullptr;
    std::map<UUID, Conversation> conversations_;
};

}  // namespace orbinex
