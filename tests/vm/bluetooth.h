#pragma once

#include <QDBusConnection>
#include <QMap>
#include <QVariantMap>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "vm/process.h"

namespace orbinex::test {

/// bluetoothd as an onlooker sees it who may also use the system's settings. Adapters have names such as
/// "hci0". What is asked while bluetoothd is away, or of an adapter that it does not have, is false or empty.
class Bluetooth {
  public:
    struct Device {
        std::string address;
        std::string name;
        bool isConnected = false;
        bool isPaired = false;
        bool isBonded = false;
        bool areServicesResolved = false;
    };

    /// Throws std::runtime_error when there is no system bus.
    Bluetooth();

    /// Whether bluetoothd is on the bus and answers.
    [[nodiscard]] bool isUp() const;

    [[nodiscard]] std::vector<std::string> adapters() const;
    [[nodiscard]] std::string address(const std::string& adapter) const;
    [[nodiscard]] bool isPowered(const std::string& adapter) const;
    [[nodiscard]] bool isDiscovering(const std::string& adapter) const;
    /// Whether any program has registered a pairing agent: that is when bluetoothd lets adapters be paired
    /// with.
    [[nodiscard]] bool isPairable(const std::string& adapter) const;

    /// The switch in the system's settings. Returns when it has had its effect.
    testing::AssertionResult setPowered(const std::string& adapter, bool isPowered);

    /// Every remote device that the adapter knows.
    [[nodiscard]] std::vector<Device> devices(const std::string& adapter) const;
    /// "Forget this device" in the system's settings; false when it is not known.
    bool forget(const std::string& adapter, const std::string& address);
    void forgetAll(const std::string& adapter);

    /// What there is of a program's on the adapter, a phrase each: a scan, a connection, a characteristic
    /// that is subscribed to, a pairing agent.
    [[nodiscard]] std::vector<std::string> leftovers(const std::string& adapter) const;
    /// That there is nothing of the kind. Ending a connection takes seconds, so it is waited for.
    [[nodiscard]] testing::AssertionResult nothingIsLeft(const std::string& adapter) const;

  private:
    /// The properties of all objects, by path and interface.
    using Objects = QMap<QString, QMap<QString, QVariantMap>>;

    [[nodiscard]] Objects objects() const;
    [[nodiscard]] QVariantMap adapterProperties(const std::string& adapter) const;

    QDBusConnection bus_;
};

}  // namespace orbinex::test
