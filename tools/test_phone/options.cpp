#include "test_phone/options.h"

#include "base/numbers.h"
#include "base/text.h"

namespace orbinex::test_phone {

const std::string_view usage = R"(usage: orbinex_test_phone [OPTION...]
Plays the iPhone over the air, on a Bluetooth controller that the computer under test does not use.
  --adapter hciN       the controller; the second of several when not given
  --name NAME          the phone's name; "Studio iPhone" when not given
  --device-id UUID     the phone's identity; one that belongs to the controller when not given
  --version N          the protocol version that it claims, 0 to 255
  --missing WHAT       leave out a characteristic: mouse, keyboard, info or control; may be repeated
  --info ACCESS        what reading the device information takes: authenticated (pairing with digits, as when
                       not given), encrypted (any pairing) or plain (no pairing)
  --pairing ANSWER     to questions of pairing: accept (as when not given), refuse, ignore, or ask at the terminal
  --help
Commands are read from standard input, one a line; "help" lists them. Its end, or "quit", ends the phone.
)";

namespace {

std::optional<InfoAccess> infoAccessNamed(std::string_view name) {
    if (name == "plain") return InfoAccess::plain;
    if (name == "encrypted") return InfoAccess::encrypted;
    if (name == "authenticated") return InfoAccess::authenticated;
    return std::nullopt;
}

bool assign(auto& option, const auto& value) {
    if (value) option = *value;
    return value.has_value();
}

bool setVersion(Options& options, const std::string& value) {
    const auto number = parseInteger(value);
    if (!number || *number < 0 || *number > 255) return false;
    options.protocolVersion = static_cast<std::uint8_t>(*number);
    return true;
}

bool setName(Options& options, const std::string& value) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(value.data());
    return assign(options.name, strictUTF8({bytes, value.size()}));
}

bool addMissing(Options& options, const std::string& value) {
    const auto characteristic = characteristicNamed(value);
    if (characteristic) options.missing.insert(*characteristic);
    return characteristic.has_value();
}

/// Nothing for an option that there is not, else whether it can have this value.
std::optional<bool> set(Options& options, const std::string& option, const std::string& value) {
    if (option == "--adapter") return assign(options.adapter, std::optional(value)) && !value.empty();
    if (option == "--name") return setName(options, value);
    if (option == "--device-id") return assign(options.deviceID, UUID::parse(value));
    if (option == "--version") return setVersion(options, value);
    if (option == "--missing") return addMissing(options, value);
    if (option == "--info") return assign(options.infoAccess, infoAccessNamed(value));
    if (option == "--pairing") return assign(options.pairing, pairingAnswerNamed(value));
    return std::nullopt;
}

}  // namespace

OrMistake<Options> parseOptions(std::span<const std::string> arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto& option = arguments[i];
        if (option == "--help") {
            options.isHelpWanted = true;
            continue;
        }
        const bool hasValue = i + 1 < arguments.size();
        const auto outcome = set(options, option, hasValue ? arguments[i + 1] : std::string());
        if (!outcome) return Mistake{"there is no option " + option};
        if (!hasValue) return Mistake{option + " needs a value"};
        if (!*outcome) return Mistake{option + " cannot be \"" + arguments[i + 1] + "\""};
        ++i;
    }
    return options;
}

}  // namespace orbinex::test_phone
