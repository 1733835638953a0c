#pragma once

#include <QDBusObjectPath>
#include <QMap>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "base/bytes.h"
#include "link/bluez/bluez_objects.h"
#include "test_phone/characteristic.h"
#include "test_phone/command.h"
#include "test_phone/served_object.h"
#include "test_phone/subscription.h"

namespace orbinex::test_phone {

/// The phone's service and its characteristics, as bluetoothd reads them from an application
/// (org.bluez.GattManager1).
class GattApplication final : public ServedObject {
  public:
    static constexpr const char* path = "/orbinex/test_phone/application";

    /// `characteristics` are those that the service has.
    GattApplication(BluezBus& bus, std::set<Characteristic> characteristics, InfoAccess infoAccess);

    /// Whether a computer wants to be notified. bluetoothd tells only the first and the last of several.
    [[nodiscard]] bool isSubscribed(Characteristic characteristic) const {
        return subscriptions_.contains(characteristic);
    }
    [[nodiscard]] std::vector<Characteristic> subscribed() const;
    /// Gives the value to those who want it; false when it was not taken.
    [[nodiscard]] bool notify(Characteristic characteristic, ByteView value);
    /// There is nobody any more, as bluetoothd has dropped the application.
    void forgetSubscriptions();

    /// What reading the device information gives. The kind `identity` stands for the bytes too.
    Command::Info info;

    std::function<void(Characteristic, bool isSubscribed)> onSubscription;
    std::function<void()> onRead;
    std::function<void(Characteristic, ByteView)> onWritten;

  protected:
    std::optional<QDBusMessage> answer(const QDBusMessage& call) override;

  private:
    using ManagedObjects = QMap<QDBusObjectPath, BluezInterfaces>;

    [[nodiscard]] ManagedObjects objects() const;
    [[nodiscard]] std::optional<Characteristic> characteristicAt(const QString& objectPath) const;
    std::optional<QDBusMessage> read(const QDBusMessage& call);
    QDBusMessage write(Characteristic characteristic, const QDBusMessage& call);
    QDBusMessage acquire(Characteristic characteristic, const QDBusMessage& call);
    void end(Characteristic characteristic);

    std::set<Characteristic> characteristics_;
    InfoAccess infoAccess_;
    std::map<Characteristic, std::unique_ptr<Subscription>> subscriptions_;
    /// That of the latest notification.
    std::optional<Characteristic> latest_;
};

}  // namespace orbinex::test_phone
