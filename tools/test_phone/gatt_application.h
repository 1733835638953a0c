#pragma once

#include <QDBusObjectPath>
#include <QMap>
#include <functional>
#include <set>
#include <vector>

#include "base/bytes.h"
#include "link/bluez/bluez_objects.h"
#include "test_phone/characteristic.h"
#include "test_phone/command.h"
#include "test_phone/served_object.h"

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
        return subscribed_.contains(characteristic);
    }
    [[nodiscard]] const std::set<Characteristic>& subscribed() const { return subscribed_; }
    /// Gives the value to those who want it.
    void notify(Characteristic characteristic, ByteView value);
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
    QDBusMessage subscribe(Characteristic characteristic, bool isWanted, const QDBusMessage& call);

    std::set<Characteristic> characteristics_;
    InfoAccess infoAccess_;
    std::set<Characteristic> subscribed_;
};

}  // namespace orbinex::test_phone
