#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/published.h"
#include "base/user_defaults.h"
#include "trust/trusted_device.h"

namespace orbinex {

/// The iPhones that this computer trusts, kept in the user's settings. A list that is missing or damaged
/// there reads as empty, and the damaged value stays until the next save.
class TrustedDeviceStore {
  public:
    /// Loads at once. The settings must outlive the store.
    TrustedDeviceStore(UserDefaults& defaults, std::string storageKey);

    /// In store order: most recent first.
    Published<std::vector<TrustedDevice>, TrustedDeviceStore> devices;

    /// Replaces the list with the stored one, in the order in which it is stored.
    void load();
    /// Stores the list; when it cannot be encoded the stored value stays.
    void save() const;

    /// The first record for a peripheral identifier, a token (letter case ignored) or a device id, else
    /// nothing.
    [[nodiscard]] std::optional<TrustedDevice> deviceForPeripheral(const UUID& identifier) const;
    [[nodiscard]] std::optional<TrustedDevice> deviceForToken(std::string_view token) const;
    [[nodiscard]] std::optional<TrustedDevice> deviceWithID(const UUID& id) const;

    /// Inserts or replaces a record and saves. It takes the place of every record with its id or with its
    /// peripheral identifier.
    void trust(TrustedDevice record);
    /// Removes every record with this id and saves.
    void remove(const UUID& id);

  private:
    template <class Predicate>
    [[nodiscard]] std::optional<TrustedDevice> first(Predicate matches) const;

    UserDefaults& defaults_;
    std::string storageKey_;
};

}  // namespace orbinex
