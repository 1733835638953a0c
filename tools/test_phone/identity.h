#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/uuid.h"

namespace orbinex::test_phone {

/// The bytes of a local name that fit into one scan response: 31 less its length and type.
inline constexpr std::size_t maximumAdvertisedBytes = 29;

/// "OX", the six hex digits of the device id, ":" and as many whole characters of the name as fit.
std::string advertisedName(const UUID& deviceID, std::string_view name);

/// The device id of the phone that a controller plays when none is given: always the same for the same
/// address ("00:AA:01:01:00:01"), another for any other.
UUID deviceIDForAddress(std::string_view address);

/// Which of the adapters ("hci0") to take: the one that was asked for; when none was, the second, so that the
/// first stays the computer's, or the only one. Nothing when there is no such adapter.
std::optional<std::string> chooseAdapter(std::vector<std::string> adapters, std::string_view wanted);

}  // namespace orbinex::test_phone
