#include "phone_window.h"

#include <QCoreApplication>
#include <chrono>

#include "protocol/gatt.h"
#include "test_phone/transcript.h"
#include "test_phone/words.h"

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

constexpr auto actLimit = 10s;
constexpr auto linkLookInterval = 50ms;
/// What nobody asks about any more is forgotten.
constexpr std::size_t mostReceived = 4'000;
constexpr int angleOfWheelClick = 120;

std::string_view linkOf(const SimulatedPhone& phone) {
    if (phone.isConnected()) return "connected";
    return phone.isAdvertising() && phone.isInRange() ? "waiting" : "off";
}

}  // namespace

PhoneWindow::PhoneWindow(EventLoop& loop, SimulatedPhone& phone, Use use,
                         const QProcessEnvironment& environment, const QString& logFile)
    : loop_(loop), phone_(phone) {
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/orbinex_demo_phone");
    QStringList arguments;
    if (use == Use::byOrders) arguments << QStringLiteral("--by-orders");
    process_ = std::make_unique<ChildProcess>(program, arguments, environment, logFile,
                                              ChildProcess::Streams::piped);
    QObject::connect(&process_->pipe(), &QProcess::readyReadStandardOutput, &linkTimer_, [this] { read(); });
    phone_.onReceived = [this](const ControlMessage& message) {
        tell("control", test_phone::hex(message.encode()));
        auto& received = phone_.received;
        if (received.size() > mostReceived)
            received.erase(received.begin(), received.begin() + mostReceived / 2);
    };
    QObject::connect(&linkTimer_, &QTimer::timeout, &linkTimer_, [this] { tellLink(); });
    linkTimer_.start(linkLookInterval);
}

PhoneWindow::~PhoneWindow() {
    phone_.onReceived = nullptr;
}

void PhoneWindow::tellLink() {
    const auto link = linkOf(phone_);
    if (link == toldLink_) return;
    toldLink_ = link;
    tell("link", link);
}

void PhoneWindow::tell(std::string_view word, std::string_view rest) {
    if (!isOpen()) return;
    // What was written before the link was told of would be forgotten with the link before.
    if (word != "link") tellLink();
    std::string line(word);
    line.append(" ").append(rest).append("\n");
    process_->pipe().write(line.data(), static_cast<qint64>(line.size()));
}

void PhoneWindow::show(const DecodedPacket& packet) {
    tell("sent", test_phone::hex(packet.encode()));
}

void PhoneWindow::read() {
    const QByteArray bytes = process_->pipe().readAllStandardOutput();
    for (const auto& line : lines_.take({bytes.data(), static_cast<std::size_t>(bytes.size())})) {
        const auto space = line.find(' ');
        const std::string_view all = line;
        hear(all.substr(0, space), space == std::string::npos ? std::string_view() : all.substr(space + 1));
    }
}

void PhoneWindow::hear(std::string_view word, std::string_view rest) {
    const auto notify = [&](const UUID& characteristic) {
        if (const auto value = test_phone::Words(rest).hexBytes()) phone_.notify(characteristic, *value);
    };
    if (word == "mouse") return notify(OrbinexProtocol::mouseCharacteristicUUID);
    if (word == "keyboard") return notify(OrbinexProtocol::keyboardCharacteristicUUID);
    if (word == "control") return notify(OrbinexProtocol::controlCharacteristicUUID);
    if (word == "ready") {
        isReady_ = true;
        return;
    }
    answer_ = std::string(word == "shows" ? rest : word);
}

std::string PhoneWindow::act(std::string_view verb, std::string_view item, std::string_view rest) {
    answer_.reset();
    std::string order(verb);
    order.append(" ").append(item);
    if (!rest.empty()) order.append(" ").append(rest);
    tell("do", order);
    loop_.waitUntil([this] { return answer_ || !isOpen(); }, actLimit);
    return answer_.value_or("no answer");
}

bool PhoneWindow::drag(std::string_view item, int deltaX, int deltaY) {
    return act("drag", item, std::to_string(deltaX) + " " + std::to_string(deltaY)) == "done";
}

bool PhoneWindow::turnWheel(std::string_view item, int clicks) {
    return act("wheel", item, std::to_string(clicks * angleOfWheelClick)) == "done";
}

std::string PhoneWindow::text(std::string_view item) {
    return act("look", item);
}

}  // namespace orbinex::demo
