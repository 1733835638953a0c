#include "test_phone/command.h"

#include <array>
#include <cmath>
#include <optional>

#include "base/numbers.h"
#include "base/text.h"
#include "protocol/control_message.h"
#include "protocol/message_type.h"
#include "test_phone/words.h"

namespace orbinex::test_phone {

namespace {

using Value = std::optional<Command::Value>;
using Subject = Command::Switch::Subject;

Value input(DecodedPacket packet) {
    return Command::Input{{std::move(packet)}};
}

bool isText(std::string_view text) {
    return strictUTF8({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}).has_value();
}

template <class Motion>
Value motion(Words& words) {
    const auto x = words.points();
    const auto y = words.points();
    if (!x || !y) return std::nullopt;
    return input({Motion{*x, *y}});
}

Value parseCircle(Words& words) {
    const auto radius = words.isEmpty() ? 100.0F : words.points();
    if (!radius || *radius <= 0) return std::nullopt;
    return Command::Input{circle(*radius)};
}

template <KeyState state>
Value buttonChange(Words& words) {
    const auto button = words.button();
    if (!button) return std::nullopt;
    return input({DecodedPacket::MouseButtonChange{*button, state}});
}

Value parseClick(Words& words) {
    const auto button = words.button();
    const auto count = words.isEmpty() ? 1 : words.integer(1, 3);
    if (!button || !count) return std::nullopt;
    return Command::Input{taps(*button, static_cast<int>(*count))};
}

Value parseType(Words& words) {
    if (words.isEmpty() || !isText(words.rest())) return std::nullopt;
    const auto text = std::exchange(words, Words({})).rest();
    return Command::Input{typedText(text)};
}

Value parseText(Words& words) {
    const auto modifiers = words.joinedModifiers();
    std::optional<std::uint16_t> fallback;
    if (words.rest().starts_with("none ")) {
        words.word();
    } else if (!(fallback = words.key())) {
        return std::nullopt;
    }
    const auto text = std::exchange(words, Words({})).rest();
    if (!modifiers || text.empty() || !isText(text)) return std::nullopt;
    return input({DecodedPacket::Text{std::string(text), *modifiers, fallback}});
}

Value parseKey(Words& words) {
    const auto key = words.key();
    const auto modifiers = words.modifiers();
    if (!key || !modifiers) return std::nullopt;
    return Command::Input{strike(*key, *modifiers)};
}

template <KeyState state>
Value keyChange(Words& words) {
    const auto key = words.key();
    const auto modifiers = words.modifiers();
    if (!key || !modifiers) return std::nullopt;
    return input({DecodedPacket::KeyStroke{*key, *modifiers, state}});
}

Value parseRate(Words& words) {
    const auto perSecond = words.integer(1, 2000);
    const auto seconds = parseDecimal(words.word());
    if (!perSecond || !seconds || !(*seconds > 0 && *seconds <= 3600)) return std::nullopt;
    return Command::Rate{
        static_cast<int>(*perSecond),
        static_cast<std::uint32_t>(std::llround(*seconds * static_cast<double>(*perSecond)))};
}

Value parseCommandText(Words& words) {
    const auto text = std::exchange(words, Words({})).rest();
    if (!DAWCommand::decode(text)) return std::nullopt;
    return Command::Notification{
        Characteristic::control,
        OrbinexProtocol::textMessage(OrbinexProtocol::MessageType::dawCommand, text)};
}

Value parseDisconnect(Words&) {
    return Command::Notification{Characteristic::control,
                                 ControlMessage{ControlMessage::DisconnectRequest{}}.encode()};
}

Value parseSend(Words& words) {
    const auto characteristic = characteristicNamed(words.word());
    auto bytes = words.hexBytes();
    if (!characteristic || characteristic == Characteristic::info || !bytes) return std::nullopt;
    return Command::Notification{*characteristic, *std::move(bytes)};
}

Value parseInfo(Words& words) {
    using Kind = Command::Info::Kind;
    const auto first = Words(words).word();
    for (const auto& [name, kind] :
         {std::pair("identity", Kind::identity), std::pair("refused", Kind::refused),
          std::pair("silent", Kind::silent)}) {
        if (first != name) continue;
        words.word();
        return Command::Info{kind, {}};
    }
    auto bytes = words.hexBytes();
    if (first.empty() || !bytes) return std::nullopt;
    return Command::Info{Kind::bytes, *std::move(bytes)};
}

template <Subject subject, bool isOn>
Value turn(Words&) {
    return Command::Switch{subject, isOn};
}

template <Subject subject>
Value parseSwitch(Words& words) {
    const auto isOn = words.onOff();
    if (!isOn) return std::nullopt;
    return Command::Switch{subject, *isOn};
}

Value parsePairing(Words& words) {
    const auto answer = pairingAnswerNamed(words.word());
    if (!answer) return std::nullopt;
    return Command::SetPairing{*answer};
}

template <bool isAccepted>
Value answer(Words&) {
    return Command::AnswerPairing{isAccepted};
}

template <class Plain>
Value plain(Words&) {
    return Plain{};
}

struct Row {
    std::string_view name;
    std::string_view arguments;
    std::string_view meaning;
    Value (*parse)(Words&);
};

constexpr std::array rows{
    Row{"move", "DX DY", "moves the pointer, in points", motion<DecodedPacket::MouseMove>},
    Row{"circle", "[RADIUS]", "moves it once around, 100 points when not given", parseCircle},
    Row{"down", "[left|right]", "presses a button and holds it", buttonChange<KeyState::pressed>},
    Row{"up", "[left|right]", "releases it", buttonChange<KeyState::released>},
    Row{"click", "[left|right] [COUNT]", "one to three taps", parseClick},
    Row{"scroll", "DX DY", "scrolls", motion<DecodedPacket::MouseScroll>},
    Row{"type", "TEXT", "types the rest of the line", parseType},
    Row{"text", "MODIFIERS FALLBACK TEXT", "one packet of text: shift+command or none, a key or none",
        parseText},
    Row{"key", "NAME|CODE [MODIFIER...]", "presses and releases a key: return, left, f5, a, 36", parseKey},
    Row{"key-down", "NAME|CODE [MODIFIER...]", "presses a key and holds it", keyChange<KeyState::pressed>},
    Row{"key-up", "NAME|CODE [MODIFIER...]", "releases it", keyChange<KeyState::released>},
    Row{"rate", "N SECONDS", "N numbered moves a second, along a path that shows each loss", parseRate},
    Row{"command", "TEXT", "asks the editor for something: SYNC, VOL|3|-6.5", parseCommandText},
    Row{"disconnect", "", "asks the computer to end the session", parseDisconnect},
    Row{"send", "mouse|keyboard|control HEX", "notifies these bytes as they are", parseSend},
    Row{"info", "HEX|identity|refused|silent", "what reading the device information gives", parseInfo},
    Row{"withdraw", "", "takes the service away; the advertisement stays", turn<Subject::service, false>},
    Row{"offer", "", "brings it back, at new handles", turn<Subject::service, true>},
    Row{"quit-app", "", "takes service and advertisement away; the link stays", turn<Subject::app, false>},
    Row{"start-app", "", "brings both back", turn<Subject::app, true>},
    Row{"advertise", "on|off", "only the advertisement", parseSwitch<Subject::advertising>},
    Row{"drop", "", "ends the link from this side (BlueZ takes about two seconds)", plain<Command::Drop>},
    Row{"power", "on|off", "the controller's: out of range at once", parseSwitch<Subject::power>},
    Row{"forget", "", "forgets every computer and its pairing", plain<Command::Forget>},
    Row{"pairing", "accept|refuse|ignore|ask", "what to answer from now on", parsePairing},
    Row{"yes", "", "to the question of pairing that is open", answer<true>},
    Row{"no", "", "the same", answer<false>},
    Row{"status", "", "how things are", plain<Command::Status>},
    Row{"help", "", "this list", plain<Command::Help>},
    Row{"quit", "", "unregisters everything and ends", plain<Command::Quit>},
};

}  // namespace

std::string_view commandName(std::string_view line) {
    return Words(line).word();
}

OrMistake<Command> parseCommand(std::string_view line) {
    Words words(line);
    const auto name = words.word();
    for (const auto& row : rows) {
        if (row.name != name) continue;
        auto value = row.parse(words);
        if (value && words.isEmpty()) return Command{std::string(name), *std::move(value)};
        return Mistake{"usage: " + std::string(name) + (row.arguments.empty() ? "" : " ") +
                       std::string(row.arguments)};
    }
    return Mistake{"no such command; try help"};
}

std::string commandHelp() {
    std::string result;
    for (const auto& row : rows) {
        std::string line = std::string(row.name) + " " + std::string(row.arguments);
        line.resize(std::max<std::size_t>(line.size() + 1, 34), ' ');
        result += line + std::string(row.meaning) + "\n";
    }
    return result;
}

}  // namespace orbinex::test_phone
