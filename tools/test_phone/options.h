#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "base/uuid.h"
#include "protocol/gatt.h"
#include "test_phone/characteristic.h"
#include "test_phone/mistake.h"
#include "test_phone/pairing_answer.h"

namespace orbinex::test_phone {

/// What kind of phone to be.
struct Options {
    /// Such as "hci1"; empty to choose.
    std::string adapter;
    std::string name = "Studio iPhone";
    /// Without one, the controller's own.
    std::optional<UUID> deviceID;
    std::uint8_t protocolVersion = OrbinexProtocol::protocolVersion;
    /// Characteristics that this phone's version of the service lacks.
    std::set<Characteristic> missing;
    InfoAccess infoAccess = InfoAccess::authenticated;
    PairingAnswer pairing = PairingAnswer::accept;
    /// Only tell how the program is used.
    bool isHelpWanted = false;
};

extern const std::string_view usage;

/// Reads the command line, without the program's name.
OrMistake<Options> parseOptions(std::span<const std::string> arguments);

}  // namespace orbinex::test_phone
