#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "base/uuid.h"

namespace orbinex {

/// One iPhone that this computer trusts.
struct TrustedDevice {
    /// The identity that the iPhone tells of itself.
    UUID id;
    /// As last reported by the iPhone; may be empty.
    std::string name;
    /// Six upper-case hex digits, the first three bytes of `id`; the iPhone advertises the same.
    std::string token;
    /// What the platform calls the iPhone as a peripheral, when known.
    std::optional<UUID> peripheralIdentifier;
    /// When the iPhone was first trusted.
    Date dateAdded;
    /// When it last told who it is in a session.
    std::optional<Date> lastConnected;

    friend bool operator==(const TrustedDevice&, const TrustedDevice&) = default;
};

/// The stored form: UTF-8 JSON, an array of objects in the given order. Dates are seconds since 2001-01-01
/// UTC; a missing optional field is left out. Nothing when a record cannot be written (a date that is not
/// finite, a text that is not UTF-8).
std::optional<std::string> encodeTrustedDevices(const std::vector<TrustedDevice>& devices);
/// Reads the stored form. Nothing when any of it is malformed; unknown keys are ignored.
std::optional<std::vector<TrustedDevice>> decodeTrustedDevices(std::string_view json);

/// Puts the most recently connected (else added) first; equal dates keep their order.
void sortIntoStoreOrder(std::vector<TrustedDevice>& devices);

}  // namespace orbinex
