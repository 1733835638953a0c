#include "test_phone/phone_agent.h"

#include <QDBusObjectPath>
#include <utility>

namespace orbinex::test_phone {

namespace {

constexpr const char* rejected = "org.bluez.Error.Rejected";

}  // namespace

PhoneAgent::PhoneAgent(BluezBus& bus) : ServedObject(bus, path, QDBusConnection::SingleNode) {}

std::optional<QDBusMessage> PhoneAgent::answer(const QDBusMessage& call) {
    const auto method = call.member();
    if (method == QLatin1String("Cancel") || method == QLatin1String("Release")) {
        if (open_) onEvent("pairing cancelled");
        withdraw();
        return call.createReply();
    }
    const auto arguments = call.arguments();
    const auto device = arguments.value(0).value<QDBusObjectPath>().path();
    if (adapter.isEmpty() || !device.startsWith(adapter + "/")) {
        return call.createErrorReply(rejected, "Another controller's affair");
    }
    if (method == QLatin1String("RequestConfirmation") && call.signature() == QLatin1String("ou")) {
        return ask(call, QString::number(arguments[1].toUInt()).rightJustified(6, '0').toStdString());
    }
    // Pairing without digits, when the computer can show none.
    if (method == QLatin1String("RequestAuthorization")) return ask(call, "without-digits");
    if (method == QLatin1String("AuthorizeService")) return call.createReply();
    return call.createErrorReply(rejected, "Not a question for this phone");
}

std::optional<QDBusMessage> PhoneAgent::ask(const QDBusMessage& call, const std::string& digits) {
    open_ = call;
    const auto device = call.arguments().value(0).value<QDBusObjectPath>().path();
    onEvent("pairing " + addressInPath(device) + " " + digits + " " + std::string(name(pairing)));
    if (pairing == PairingAnswer::accept || pairing == PairingAnswer::refuse) {
        giveAnswer(pairing == PairingAnswer::accept);
    }
    return std::nullopt;
}

bool PhoneAgent::giveAnswer(bool isAccepted) {
    const auto call = std::exchange(open_, std::nullopt);
    if (!call) return false;
    send(isAccepted ? call->createReply() : call->createErrorReply(rejected, "Refused"));
    return true;
}

void PhoneAgent::withdraw() {
    open_.reset();
}

std::string addressInPath(const QString& devicePath) {
    const auto part = devicePath.section('/', -1);
    return part.startsWith("dev_") ? part.mid(4).replace('_', ':').toStdString() : std::string();
}

}  // namespace orbinex::test_phone
