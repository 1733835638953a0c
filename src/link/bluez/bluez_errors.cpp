#include "link/bluez/bluez_errors.h"

#include "link/bluez/bluez_names.h"
#include "link/bluez/bluez_sentences.h"

namespace orbinex {

namespace {

using Kind = BluetoothError::Kind;

/// What BlueZ reports for an Attribute Protocol error, and for a link that it failed to secure.
constexpr int unlikelyError = 0x0e;
constexpr int insufficientAuthorization = 8;

bool is(const BluezError& error, const char* name) {
    return error.name == QLatin1String("org.bluez.Error.") + QLatin1String(name);
}

bool isAborted(const BluezError& error) {
    return error.text == QLatin1String("le-connection-abort-by-local");
}

}  // namespace

std::optional<int> attributeCode(const QString& text) {
    const QLatin1String mark("ATT error: 0x");
    const auto at = text.indexOf(mark);
    if (at < 0) return std::nullopt;
    bool isNumber = false;
    const uint code = text.mid(at + mark.size()).toUInt(&isNumber, 16);
    return isNumber && code <= 0xff ? std::optional(static_cast<int>(code)) : std::nullopt;
}

BluetoothError plainError(const BluezError& error) {
    return {Kind::other, 0, sentenceFor(error)};
}

ConnectFailure connectFailure(const BluezError& error, bool isBonded, std::chrono::nanoseconds elapsed) {
    if (isAborted(error)) {
        return isBonded && elapsed <= promptFailure ? ConnectFailure::perhapsForgotten
                                                    : ConnectFailure::transient;
    }
    if (!error.name.startsWith(QLatin1String("org.bluez."))) {
        // From the bus: no answer, gone, no such object any more. Only a refusal is meant for good.
        return error.name == QLatin1String(Bluez::accessDenied) ? ConnectFailure::final
                                                                : ConnectFailure::transient;
    }
    if (is(error, "InProgress") || is(error, "NotReady") || is(error, "DoesNotExist")) {
        return ConnectFailure::transient;
    }
    if (!is(error, "Failed")) return ConnectFailure::final;
    for (const char* text : {"Operation already in progress", "Input/output error", "br-connection-canceled",
                             "le-connection-canceled", "le-connection-timeout", "le-connection-busy",
                             "Software caused connection abort", "Connection timed out", "Host is down"}) {
        if (error.text == QLatin1String(text)) return ConnectFailure::transient;
    }
    return ConnectFailure::final;
}

BluetoothError forgottenPairing(const BluezError& error) {
    return {Kind::framework, BluetoothError::peerRemovedPairingInformation, plainError(error).description};
}

BluetoothError notPaired() {
    return {Kind::attribute, BluetoothError::insufficientAuthentication,
            sentenceFor({QString(), QStringLiteral("Not paired")})};
}

BluetoothError attributeError(const BluezError& error, bool isBonded) {
    BluetoothError result = plainError(error);
    if (const auto code = attributeCode(error.text)) {
        result.kind = Kind::attribute;
        // An unsecured link that could not be secured ends in this code whatever the reason was.
        result.code =
            *code == unlikelyError && !isBonded ? BluetoothError::insufficientAuthentication : *code;
    } else if (is(error, "NotPermitted") && error.text == QLatin1String("Not paired")) {
        result.kind = Kind::attribute;
        result.code = BluetoothError::insufficientAuthentication;
    } else if (is(error, "NotAuthorized")) {
        result.kind = Kind::attribute;
        result.code = insufficientAuthorization;
    }
    return result;
}

std::optional<BluetoothError> pairingError(const BluezError& error) {
    if (is(error, "AlreadyExists")) return std::nullopt;
    BluetoothError result = plainError(error);
    if (is(error, "AuthenticationTimeout") || error.name == QLatin1String(Bluez::noReply)) {
        result.kind = Kind::framework;
        result.code = BluetoothError::encryptionTimedOut;
    } else if (is(error, "AuthenticationFailed") || is(error, "AuthenticationRejected") ||
               is(error, "AuthenticationCanceled")) {
        result.kind = Kind::attribute;
        result.code = BluetoothError::insufficientAuthentication;
    }
    return result;
}

}  // namespace orbinex
