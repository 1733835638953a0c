#include "link/bluez/bluez_sentences.h"

#include <QStringList>
#include <algorithm>
#include <array>

namespace orbinex {

namespace {

constexpr const char* connectedAlready = "The iPhone is connected already.";

constexpr const char* noAnswer = "The iPhone did not answer.";
constexpr const char* ended = "The iPhone ended the connection.";
constexpr const char* refused = "The iPhone refused the connection.";
constexpr const char* gone = "The iPhone is no longer connected.";
constexpr const char* notSecure = "The iPhone asks for a secure pairing.";
constexpr const char* notAllowed = "The iPhone does not allow this.";
constexpr const char* notOffered = "The iPhone does not offer what Orbinex asks for.";
constexpr const char* misunderstood = "The iPhone and this computer did not understand each other.";
constexpr const char* phoneBusy = "The iPhone is busy.";
constexpr const char* busy = "Bluetooth is busy. Try again in a moment.";
constexpr const char* off = "Bluetooth is turned off.";
constexpr const char* notReady = "Bluetooth is not ready yet. Try again in a moment.";
constexpr const char* notRunning = "The Bluetooth service of this computer is not running.";
constexpr const char* silent = "The Bluetooth service of this computer does not answer.";
constexpr const char* faulty = "Bluetooth on this computer failed.";
constexpr const char* unknownDevice = "Bluetooth no longer knows this iPhone.";
constexpr const char* inUse = "Another program uses this iPhone's Orbinex service.";

/// What was said, and what it means. That is, by what is looked for in turn: the whole text; the reason in
/// "le-connection-REASON" and "br-connection-REASON" (BlueZ's src/error.h); "ATT" and the code of "ATT error:
/// 0xCODE" (Bluetooth Core Specification, Vol 3, Part F, 3.4.1.1); the last part of the error's name.
struct Meaning {
    const char* said;
    const char* sentence;
};
constexpr std::array meanings{
    // Texts: those of errno that BlueZ passes on, and some of its own
    Meaning{"Connection timed out", noAnswer},
    Meaning{"Host is down", noAnswer},
    Meaning{"No route to host", noAnswer},
    Meaning{"Connection refused", refused},
    Meaning{"Connection reset by peer", ended},
    Meaning{"Software caused connection abort", "The connection was broken off."},
    Meaning{"Not connected", gone},
    Meaning{"Not Connected", gone},
    Meaning{"Transport endpoint is not connected", gone},
    Meaning{"Input/output error", faulty},
    Meaning{"Cannot allocate memory", faulty},
    Meaning{"Device or resource busy", busy},
    Meaning{"Operation already in progress", busy},
    Meaning{"Operation now in progress", busy},
    Meaning{"No such device", unknownDevice},
    Meaning{"No value", "The iPhone sent nothing."},
    Meaning{"Not paired", notSecure},
    Meaning{"Notify acquired", inUse},
    Meaning{"Write acquired", inUse},
    // Reasons
    Meaning{"page-timeout", noAnswer},
    Meaning{"timeout", noAnswer},
    Meaning{"abort-by-local", noAnswer},
    Meaning{"aborted-by-local", noAnswer},
    Meaning{"abort-by-remote", ended},
    Meaning{"aborted-by-remote", ended},
    Meaning{"refused", refused},
    Meaning{"canceled", "The connection was cancelled."},
    Meaning{"already-connected", connectedAlready},
    Meaning{"busy", busy},
    Meaning{"concurrent-connection-limit", "This computer's Bluetooth has no room for another connection."},
    Meaning{"adapter-not-powered", off},
    Meaning{"key-missing", "The iPhone no longer has its pairing with this computer."},
    Meaning{"not-supported", notOffered},
    Meaning{"profile-unavailable", notOffered},
    Meaning{"sdp-search", notOffered},
    Meaning{"lmp-protocol-error", misunderstood},
    Meaning{"link-layer-protocol-error", misunderstood},
    Meaning{"gatt-browsing", misunderstood},
    Meaning{"create-socket", faulty},
    Meaning{"bad-socket", faulty},
    Meaning{"memory-allocation", faulty},
    Meaning{"invalid-argument", faulty},
    Meaning{"invalid-arguments", faulty},
    Meaning{"unknown", faulty},
    // Codes
    Meaning{"ATT 01", notOffered},
    Meaning{"ATT 02", notAllowed},
    Meaning{"ATT 03", notAllowed},
    Meaning{"ATT 04", misunderstood},
    Meaning{"ATT 05", notSecure},
    Meaning{"ATT 06", notOffered},
    Meaning{"ATT 07", misunderstood},
    Meaning{"ATT 08", notAllowed},
    Meaning{"ATT 09", phoneBusy},
    Meaning{"ATT 0a", notOffered},
    Meaning{"ATT 0b", misunderstood},
    Meaning{"ATT 0c", notSecure},
    Meaning{"ATT 0d", misunderstood},
    Meaning{"ATT 0e", "The iPhone reported an unexpected error."},
    Meaning{"ATT 0f", notSecure},
    Meaning{"ATT 10", notOffered},
    Meaning{"ATT 11", phoneBusy},
    Meaning{"ATT 12", misunderstood},
    Meaning{"ATT 13", notAllowed},
    // Names: bluetoothd's, then the bus's
    Meaning{"NotReady", notReady},
    Meaning{"NotAvailable", notOffered},
    Meaning{"NotSupported", notOffered},
    Meaning{"NotPermitted", notAllowed},
    Meaning{"NotAuthorized", notAllowed},
    Meaning{"NotConnected", gone},
    Meaning{"AlreadyConnected", connectedAlready},
    Meaning{"DoesNotExist", unknownDevice},
    Meaning{"InProgress", busy},
    Meaning{"InvalidArguments", faulty},
    Meaning{"ConnectionAttemptFailed", noAnswer},
    Meaning{"AuthenticationFailed", "The pairing failed."},
    Meaning{"AuthenticationCanceled", "The pairing was cancelled."},
    Meaning{"AuthenticationRejected", "The pairing was refused."},
    Meaning{"AuthenticationTimeout", "The pairing request was not answered in time."},
    Meaning{"AccessDenied", "Programs of this user may not use Bluetooth on this computer."},
    Meaning{"NoReply", silent},
    Meaning{"Timeout", silent},
    Meaning{"TimedOut", silent},
    Meaning{"ServiceUnknown", notRunning},
    Meaning{"NameHasNoOwner", notRunning},
    Meaning{"Disconnected", notRunning},
    Meaning{"UnknownObject", unknownDevice},
    Meaning{"UnknownMethod", faulty},
};

const char* meaningOf(const QString& said) {
    const auto found = std::ranges::find_if(
        meanings, [&](const Meaning& meaning) { return said == QLatin1String(meaning.said); });
    return found == meanings.end() ? nullptr : found->sentence;
}

QString reasonIn(const QString& text) {
    for (const QLatin1String start : {QLatin1String("le-connection-"), QLatin1String("br-connection-")}) {
        if (text.startsWith(start)) return text.mid(start.size());
    }
    return {};
}

QString codeIn(const QString& text) {
    const auto code = attributeCode(text);
    return code ? QStringLiteral("ATT %1").arg(*code, 2, 16, QLatin1Char('0')) : QString();
}

}  // namespace

std::string sentenceFor(const BluezError& error) {
    const QString name = error.name.section(QLatin1Char('.'), -1);
    for (const QString& said : {error.text, reasonIn(error.text), codeIn(error.text), name}) {
        if (const char* const sentence = said.isEmpty() ? nullptr : meaningOf(said)) return sentence;
    }
    return "Bluetooth reported: " + (error.text.isEmpty() ? error.name : error.text).toStdString() + ".";
}

}  // namespace orbinex
