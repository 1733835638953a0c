#include "test_phone/phone.h"

#include <utility>

#include "base/numbers.h"
#include "protocol/device_info.h"
#include "test_phone/identity.h"
#include "test_phone/numbered_moves.h"
#include "test_phone/transcript.h"

namespace orbinex::test_phone {

namespace {

/// Ending a link takes BlueZ two to three seconds.
constexpr std::chrono::seconds patienceToQuit{8};
const Mistake nobodySubscribed{"no computer has subscribed"};

std::set<Characteristic> present(const std::set<Characteristic>& missing) {
    std::set<Characteristic> result;
    for (const auto characteristic : allCharacteristics) {
        if (!missing.contains(characteristic)) result.insert(characteristic);
    }
    return result;
}

Characteristic characteristicFor(const DecodedPacket& packet) {
    const bool isKeyboard = std::holds_alternative<DecodedPacket::KeyStroke>(packet.value) ||
                            std::holds_alternative<DecodedPacket::Text>(packet.value);
    return isKeyboard ? Characteristic::keyboard : Characteristic::mouse;
}

std::string joined(const std::vector<std::string>& words) {
    std::string result;
    for (const auto& word : words) result += (result.empty() ? "" : ",") + word;
    return result.empty() ? "nobody" : result;
}

const char* onOff(bool isOn) {
    return isOn ? "on" : "off";
}

}  // namespace

Phone::Phone(MainQueue& queue, const QDBusConnection& bus, Options options, Print print,
             std::function<void()> begun, std::function<void(const std::optional<Mistake>&)> end)
    : queue_(queue),
      options_(std::move(options)),
      print_(std::move(print)),
      begun_(std::move(begun)),
      end_(std::move(end)),
      bus_(queue, bus),
      application_(bus_, present(options_.missing), options_.infoAccess),
      advertisement_(bus_),
      agent_(bus_),
      radio_(bus_, options_.adapter, application_, advertisement_, agent_) {
    agent_.pairing = options_.pairing;
    listen();
}

Phone::~Phone() {
    bus_.stop();
}

void Phone::listen() {
    application_.onSubscription = [this](Characteristic characteristic, bool isSubscribed) {
        print_((isSubscribed ? "subscribed " : "unsubscribed ") + std::string(name(characteristic)));
    };
    application_.onRead = [this] { print_("read info"); };
    application_.onWritten = [this](Characteristic characteristic, ByteView value) {
        if (characteristic == Characteristic::control) return print_(describeWritten(value));
        print_("written " + std::string(name(characteristic)) + " " + hex(value));
    };
    agent_.onEvent = print_;
    radio_.onEvent = print_;
    radio_.onFound = [this] { found(); };
    radio_.onReady = [this] {
        print_("ready " + radio_.adapterName() + " " + radio_.address() + " " +
               printable(advertisement_.localName.toStdString()));
        if (const auto once = std::exchange(begun_, nullptr)) once();
    };
    radio_.onAway = [this](const std::string& why) { away(why); };
}

void Phone::found() {
    const auto id = options_.deviceID.value_or(deviceIDForAddress(radio_.address()));
    advertisement_.localName = QString::fromStdString(advertisedName(id, options_.name));
    if (application_.info.kind == Command::Info::Kind::identity) {
        application_.info.bytes = DeviceInfo{options_.protocolVersion, id, options_.name}.encode();
    }
}

void Phone::away(const std::string& why) {
    if (begun_) return end(Mistake{why});
    print_("away: " + printable(why));
}

void Phone::execute(const std::string& line) {
    if (commandName(line).empty()) return;
    const auto command = parseCommand(line);
    if (const auto* mistake = std::get_if<Mistake>(&command)) {
        return answer(printable(commandName(line)), *mistake);
    }
    const auto& [name, value] = std::get<Command>(command);
    std::visit([&, &itsName = name](const auto& one) { carryOut(itsName, one); }, value);
}

void Phone::answer(const std::string& name, const std::optional<Mistake>& mistake) {
    print_(mistake ? "error " + name + ": " + printable(mistake->text) : "ok " + name);
}

PhoneRadio::Done Phone::answering(const std::string& name) {
    return [this, name](const std::optional<Mistake>& mistake) { answer(name, mistake); };
}

bool Phone::notify(Characteristic characteristic, ByteView value) {
    // bluetoothd keeps a bonded computer's subscriptions while it is away.
    return !radio_.hosts().connected().empty() && application_.notify(characteristic, value);
}

bool Phone::send(const DecodedPacket& packet) {
    return notify(characteristicFor(packet), packet.encode());
}

void Phone::carryOut(const std::string& name, const Command::Input& input) {
    inputs_.push_back({name, input.packets});
    if (!playing_) playNext();
}

/// A packet that stands alone goes at once, so that a line after it finds it sent.
void Phone::playNext() {
    playing_.reset();
    while (!inputs_.empty() && inputs_.front().packets.size() == 1) {
        const auto input = std::move(inputs_.front());
        inputs_.pop_front();
        const bool isSent = send(input.packets.front());
        answer(input.name, isSent ? std::nullopt : std::optional(nobodySubscribed));
    }
    if (inputs_.empty()) return;
    playing_ = std::make_unique<SteadyRun>(
        queue_, pace, static_cast<std::uint32_t>(inputs_.front().packets.size()),
        [this](std::uint32_t number) { return send(inputs_.front().packets[number]); },
        [this](const SteadyRun::Result& result) {
            answer(inputs_.front().name, result.isComplete ? std::nullopt : std::optional(nobodySubscribed));
            inputs_.pop_front();
            playNext();
        });
}

void Phone::carryOut(const std::string& name, const Command::Notification& notification) {
    const bool isSent = notify(notification.characteristic, notification.value);
    answer(name, isSent ? std::nullopt : std::optional(nobodySubscribed));
}

void Phone::carryOut(const std::string& name, const Command::Rate& rate) {
    if (rate_) return answer(name, Mistake{"one is running"});
    rate_ = std::make_unique<SteadyRun>(
        queue_, rate.perSecond, rate.total,
        [this](std::uint32_t number) { return notify(Characteristic::mouse, numberedMove(number)); },
        [this, name](const SteadyRun::Result& result) {
            rateDone(name, result);
            rate_.reset();
        });
}

void Phone::rateDone(const std::string& name, const SteadyRun::Result& result) {
    const auto pointer = offsetAfter(result.count);
    const auto text = std::to_string(result.count) + " moves in " +
                      formatFixed(std::chrono::duration<double>(result.elapsed).count(), 3) + " s, at most " +
                      formatFixed(std::chrono::duration<double, std::milli>(result.latest).count(), 1) +
                      " ms late, pointer " + std::to_string(pointer.x) + " " + std::to_string(pointer.y);
    if (!result.isComplete) return answer(name, Mistake{"no computer subscribes any more, after " + text});
    print_("ok " + name + " " + text);
}

void Phone::carryOut(const std::string& name, const Command::Info& info) {
    application_.info = info;
    if (!radio_.address().empty()) found();
    answer(name, std::nullopt);
}

void Phone::carryOut(const std::string& name, const Command::Switch& change) {
    radio_.set(change, answering(name));
}

void Phone::carryOut(const std::string& name, const Command::Drop&) {
    radio_.drop(answering(name));
}

void Phone::carryOut(const std::string& name, const Command::Forget&) {
    radio_.forget(answering(name));
}

void Phone::carryOut(const std::string& name, const Command::SetPairing& pairing) {
    agent_.pairing = pairing.answer;
    answer(name, std::nullopt);
}

void Phone::carryOut(const std::string& name, const Command::AnswerPairing& given) {
    const bool wasAsked = agent_.giveAnswer(given.isAccepted);
    answer(name, wasAsked ? std::nullopt : std::optional(Mistake{"nothing is being asked"}));
}

void Phone::carryOut(const std::string& name, const Command::Status&) {
    const auto presence = radio_.presence();
    std::vector<std::string> subscribed;
    for (const auto characteristic : application_.subscribed()) {
        subscribed.emplace_back(test_phone::name(characteristic));
    }
    print_("status " + radio_.adapterName() + " power=" + onOff(presence.isPowered) +
           " service=" + onOff(presence.isServiceOffered) + " advertising=" + onOff(presence.isAdvertising) +
           " pairing=" + std::string(test_phone::name(agent_.pairing)) +
           " connected=" + joined(radio_.hosts().connected()) + " bonded=" + joined(radio_.hosts().bonded()) +
           " subscribed=" + joined(subscribed));
    answer(name, std::nullopt);
}

void Phone::carryOut(const std::string& name, const Command::Help&) {
    print_(commandHelp());
    answer(name, std::nullopt);
}

void Phone::carryOut(const std::string&, const Command::Quit&) {
    quit();
}

void Phone::quit() {
    if (std::exchange(isEnding_, true)) return end(std::nullopt);
    patience_ = queue_.after(patienceToQuit, [this] { end(std::nullopt); });
    radio_.leave([this](const std::optional<Mistake>& mistake) {
        if (mistake) print_("error quit: " + printable(mistake->text));
        end(std::nullopt);
    });
}

void Phone::end(const std::optional<Mistake>& mistake) {
    if (const auto once = std::exchange(end_, nullptr)) once(mistake);
}

}  // namespace orbinex::test_phone
