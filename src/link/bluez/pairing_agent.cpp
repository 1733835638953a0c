#include "link/bluez/pairing_agent.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>

#include "link/bluez/bluez_names.h"

namespace orbinex {

namespace {

constexpr const char* rejected = "org.bluez.Error.Rejected";

/// The digits of a passkey, 0 to 999999.
std::string sixDigits(uint passkey) {
    return QString::number(passkey).rightJustified(6, QLatin1Char('0')).toStdString();
}

}  // namespace

PairingAgent::PairingAgent(BluezBus& bus, PairingPrompt& prompt) : bus_(bus), prompt_(prompt) {
    bus_.connection().registerVirtualObject(path, this);
}

PairingAgent::~PairingAgent() {
    rest();
    bus_.connection().unregisterObject(path);
}

void PairingAgent::serve(const QString& device, const std::string& name) {
    rest();
    device_ = device;
    name_ = name;
}

void PairingAgent::rest() {
    withdraw();
    device_.clear();
}

void PairingAgent::withdraw() {
    if (!question_) return;
    question_.reset();
    prompt_.withdraw();
}

QString PairingAgent::introspect(const QString&) const {
    return {};
}

bool PairingAgent::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    if (!bus_.isFromOwner(message)) {
        bus_.connection().send(message.createErrorReply(rejected, "Not for you"));
        return true;
    }
    const auto method = message.member();
    const auto arguments = message.arguments();
    if (method == QLatin1String("Cancel") || method == QLatin1String("Release")) {
        withdraw();
        bus_.connection().send(message.createReply());
        return true;
    }
    const bool isForOurs =
        !device_.isEmpty() && !arguments.isEmpty() && arguments[0].value<QDBusObjectPath>().path() == device_;
    if (isForOurs && method == QLatin1String("RequestConfirmation") &&
        message.signature() == QLatin1String("ou")) {
        ask(message, sixDigits(arguments[1].toUInt()));
    } else if (isForOurs && method == QLatin1String("RequestAuthorization")) {
        ask(message, std::nullopt);
    } else {
        bus_.connection().send(message.createErrorReply(rejected, "Nobody to ask"));
    }
    return true;
}

void PairingAgent::ask(const QDBusMessage& question, const std::optional<std::string>& digits) {
    withdraw();
    question.setDelayedReply(true);
    question_ = std::make_unique<Lifetime>();
    prompt_.ask(name_, digits, question_->guard([this, question](bool isAccepted) {
        question_.reset();
        bus_.connection().send(isAccepted ? question.createReply()
                                          : question.createErrorReply(rejected, "Refused"));
    }));
}

}  // namespace orbinex
