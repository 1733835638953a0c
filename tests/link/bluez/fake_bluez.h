#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "base/bytes.h"
#include "base/main_queue.h"
#include "base/uuid.h"
#include "link/bluez/bluez_objects.h"

namespace orbinex::test {

/// A phone as the fake bluetoothd has it. Changes hold from the next step on.
struct FakePhone {
    QString address;
    QString name;
    bool isAddressRandom = true;
    /// Told in place of a random address once it is bonded.
    QString identity = "C0:FF:EE:00:00:01";
    bool isInRange = true;
    bool isBonded = false;
    bool hasForgottenBond = false;
    bool takesPairing = true;
    bool keepsBond = true;
    bool hasService = true;
    bool offersSockets = true;
    std::vector<UUID> characteristics;
    QByteArray info = "info";
    bool isClassic = false;       ///< speaks classic Bluetooth as well, at a public address
    bool hasClassicLink = false;  ///< for music, say
    bool tellsBearers = false;    ///< as newer versions do
    bool isLinked = false;        ///< over Low Energy
    QString path;                 ///< of its object, while there is one
    QString service;              ///< of its service's object, while there is one
};

/// A bluetoothd, as far as a central sees one: its objects, its answers, and what it was asked. Every call is
/// answered at once, as BlueZ 5.66 was seen to do it, unless it is scripted otherwise.
class FakeBluez final : public QDBusVirtualObject {
  public:
    using Script = std::function<void(const QDBusMessage&)>;
    static constexpr const char* hci0 = "/org/bluez/hci0";

    FakeBluez(QString busAddress, MainQueue& queue);
    ~FakeBluez() override { vanish(); }

    // The process
    void rise();
    /// Takes sockets, registrations and open calls along.
    void vanish();

    // Scripts, by method name
    void hang(const QString& method) {
        scripts[method] = [this](const QDBusMessage& call) { kept.push_back(call); };
    }
    void refuse(const QString& method, const char* name, const char* text) {
        scripts[method] = [this, name, text](const QDBusMessage& call) { fail(call, name, text); };
    }
    void answer(const QDBusMessage& call, const QVariantList& arguments = {});
    void fail(const QDBusMessage& call, const char* name, const char* text);
    /// What it does of itself.
    void act(const QDBusMessage& call);

    // Objects; every change is told
    void add(const QString& path, const BluezInterfaces& interfaces);
    void remove(const QString& path);
    void change(const QString& path, const QString& interface, const QVariantMap& changed,
                const QStringList& invalidated = {});
    void addAdapter(const QString& path, bool isPowered);
    void setPowered(const QString& path, bool isPowered);
    /// Pulled out: all its objects go, and nobody is told of its connections.
    void removeAdapter(const QString& path);
    void signal(const QString& path, const char* interface, const char* name, const QVariantList& arguments);

    // Phones
    FakePhone& addPhone(const QString& address, const QString& name);
    /// Heard once, while discovery is on.
    void advertise(FakePhone& phone);
    void connectPhone(FakePhone& phone);
    void drop(FakePhone& phone);
    void setClassicLink(FakePhone& phone, bool isThere);
    void bond(FakePhone& phone);
    void offerService(FakePhone& phone, int handle);
    void withdrawService(FakePhone& phone);
    void notify(const FakePhone& phone, const UUID& characteristic, const QByteArray& value);
    void closeSockets(const QString& below);
    /// A question to the agent; `done` is told whether it said yes.
    void askAgent(const char* method, const QVariantList& arguments, std::function<void(bool)> done);
    [[nodiscard]] bool isConnected(const FakePhone& phone) const;
    [[nodiscard]] bool isAgentRegistered() const { return agent_.has_value(); }
    [[nodiscard]] bool isDiscovering() const { return isDiscovering_; }

    [[nodiscard]] int count(const QString& method) const;
    [[nodiscard]] QDBusConnection connection() const { return *connection_; }
    [[nodiscard]] bool isUp() const { return connection_.has_value(); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

    std::map<QString, Script> scripts;
    std::vector<QDBusMessage> kept;  ///< calls that were left unanswered
    std::vector<QDBusMessage> calls;
    std::size_t sent = 0;  ///< messages, of any kind
    /// Whether Connect and the like are answered before their signals are sent.
    bool answersFirst = false;
    std::map<QString, BluezInterfaces> objects;
    std::list<FakePhone> phones;
    std::map<QString, int> sockets;  ///< the near ends, by characteristic

  private:
    void actOnAdapter(const QDBusMessage& call);
    void actOnDevice(const QDBusMessage& call, FakePhone& phone);
    void actOnCharacteristic(const QDBusMessage& call, FakePhone& phone);
    void dropSocketThatWasClosed(const QString& path);
    void actOnManager(const QDBusMessage& call);
    void endConnecting(const char* text);
    void startConnect(const QDBusMessage& call, FakePhone& phone);
    void startPair(const QDBusMessage& call, FakePhone& phone);
    [[nodiscard]] BluezInterfaces deviceObject(const FakePhone& phone) const;
    [[nodiscard]] FakePhone* phoneAt(const QString& path);

    QString busAddress_;
    MainQueue& queue_;
    std::optional<QDBusConnection> connection_;
    QString connectionName_;
    bool isDiscovering_ = false;
    std::optional<std::pair<QString, QString>> agent_;  ///< who, and where
    std::optional<QDBusMessage> connecting_;
    Timer givesUp_;
};

}  // namespace orbinex::test
