#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "base/bytes.h"
#include "test_phone/characteristic.h"
#include "test_phone/gestures.h"
#include "test_phone/mistake.h"
#include "test_phone/pairing_answer.h"

namespace orbinex::test_phone {

/// One line that somebody has typed.
struct Command {
    /// Input at the pace of a finger.
    struct Input {
        Packets packets;
    };
    /// One notification, whatever it holds.
    struct Notification {
        Characteristic characteristic = Characteristic::control;
        Bytes value;
    };
    /// Numbered moves at a steady rate.
    struct Rate {
        int perSecond = 1;
        std::uint32_t total = 0;
    };
    /// What reading the device information gives from now on.
    struct Info {
        enum class Kind { identity, bytes, refused, silent };
        Kind kind = Kind::identity;
        Bytes bytes;
    };
    /// What the phone does or has, or does not.
    struct Switch {
        enum class Subject {
            /// The service, on a phone that goes on advertising.
            service,
            /// The app: service and advertisement.
            app,
            advertising,
            /// The controller.
            power,
        };
        Subject subject = Subject::app;
        bool isOn = false;
    };
    /// Ends every link from this side.
    struct Drop {};
    /// Forgets every computer.
    struct Forget {};
    struct SetPairing {
        PairingAnswer answer = PairingAnswer::accept;
    };
    /// To the question that is open.
    struct AnswerPairing {
        bool isAccepted = false;
    };
    struct Status {};
    struct Help {};
    struct Quit {};

    using Value = std::variant<Input, Notification, Rate, Info, Switch, Drop, Forget, SetPairing,
                               AnswerPairing, Status, Help, Quit>;
    /// The first word of the line.
    std::string name;
    Value value;
};

/// Reads a line. Its text must be UTF-8 where it is to be sent as text.
OrMistake<Command> parseCommand(std::string_view line);
/// The first word of a line, however wrong the rest.
std::string_view commandName(std::string_view line);
/// Every command with what follows it, a line each.
std::string commandHelp();

}  // namespace orbinex::test_phone
