#pragma once

#include <QString>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/user_defaults.h"
#include "link/bluetooth_central.h"
#include "link/bluez/bluez_objects.h"
#include "link/bluez/identity_book.h"

namespace orbinex {

/// The remote devices of the adapter in use, by the identifiers that the link knows them by, and the names
/// that they advertise. BlueZ overwrites the name of a device that it connects; the advertised one is kept
/// here.
class BluezDevices {
  public:
    /// Identities of bonded devices, as IdentityBook stores them.
    static constexpr const char* identitiesKey = "bluetoothIdentities";

    /// Both must outlive this.
    BluezDevices(const BluezObjects& objects, UserDefaults& defaults);

    /// A device that was not bonded now is; called from noticed().
    std::function<void(const UUID&)> onBonded;

    /// Forgets the devices and takes up those of this adapter; empty is none.
    void useAdapter(const QString& adapter);
    /// A device object has come or changed. Its identifier, nothing when it is no device of the adapter.
    std::optional<UUID> noticed(const QString& path);
    void removed(const QString& path) { known_.erase(path); }

    /// Of the device at this path or of the one that has an object below it, such as a characteristic.
    [[nodiscard]] std::optional<UUID> identifierAt(const QString& path) const;
    [[nodiscard]] std::optional<BluezDevice> find(const UUID& identifier) const;
    [[nodiscard]] std::vector<UUID> all() const;
    /// Without a name when the device is not known.
    [[nodiscard]] Peripheral peripheral(const UUID& identifier) const;
    /// Nothing when it has not been heard without being connected.
    [[nodiscard]] std::optional<std::string> advertisedName(const UUID& identifier) const;

  private:
    struct Known {
        UUID identifier;
        std::optional<std::string> advertisedName;
        /// The one that a connection has brought; it stays after it, until the next advertisement.
        std::string nameWhileConnected;
        bool isBonded = false;
    };
    using Entry = std::map<QString, Known>::value_type;
    [[nodiscard]] const Entry* entry(const UUID& identifier) const;

    const BluezObjects& objects_;
    UserDefaults& defaults_;
    IdentityBook book_;
    QString adapter_;
    std::map<QString, Known> known_;
};

}  // namespace orbinex
