// The rules of the BlueZ adapter that are functions from values to values.

#include <gtest/gtest.h>

#include "link/bluez/bluez_adapter_choice.h"
#include "link/bluez/bluez_errors.h"
#include "link/bluez/bluez_sentences.h"
#include "link/bluez/bluez_sightings.h"
#include "link/bluez/connect_step.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Kind = BluetoothError::Kind;

TEST(AdapterChoice, takesTheFirstUsableOneAndStaysWithIt) {
    const BluezAdapter off0{"/hci0", true, false};
    const BluezAdapter on0{"/hci0", true, true};
    const BluezAdapter on1{"/hci1", true, true};
    const BluezAdapter off1{"/hci1", true, false};
    const BluezAdapter classic{"/hci2", false, true};
    const struct {
        std::vector<BluezAdapter> adapters;
        const char* current;
        const char* expected;
    } rows[] = {
        {{}, "/hci0", ""},
        {{classic}, "", ""},
        {{classic}, "/hci2", ""},
        {{on0, on1}, "", "/hci0"},
        {{on0, on1}, "/hci1", "/hci1"},
        {{on0, off1}, "/hci1", "/hci0"},
        {{off0, on1}, "", "/hci1"},
        {{off0, off1}, "", "/hci0"},
        {{off0, off1}, "/hci1", "/hci1"},
        {{on0}, "/hci1", "/hci0"},
    };
    for (const auto& row : rows) EXPECT_EQ(chooseAdapter(row.adapters, row.current), row.expected);
}

TEST(AdapterChoice, tellsTheStateThatThePersonIsShown) {
    const BluezAdapter on{"/hci0", true, true};
    const BluezAdapter off{"/hci0", true, false};
    const struct {
        BluezDaemon daemon;
        const BluezAdapter* adapter;
        BluetoothState expected;
    } rows[] = {
        {BluezDaemon::unasked, nullptr, BluetoothState::unknown},
        {BluezDaemon::absent, nullptr, BluetoothState::unsupported},
        {BluezDaemon::silent, &on, BluetoothState::resetting},
        {BluezDaemon::refusing, &on, BluetoothState::unauthorized},
        {BluezDaemon::present, nullptr, BluetoothState::unsupported},
        {BluezDaemon::present, &off, BluetoothState::poweredOff},
        {BluezDaemon::present, &on, BluetoothState::poweredOn},
    };
    for (const auto& row : rows) EXPECT_EQ(bluetoothStateOf(row.daemon, row.adapter), row.expected);
}

const QString failed = "org.bluez.Error.Failed";

TEST(ConnectFailures, areToldApartByTextPairingAndTime) {
    const struct {
        BluezError error;
        bool isBonded;
        std::chrono::nanoseconds elapsed;
        ConnectFailure expected;
    } rows[] = {
        {{failed, "le-connection-abort-by-local"}, true, 41s, ConnectFailure::transient},
        {{failed, "le-connection-abort-by-local"}, true, 80ms, ConnectFailure::perhapsForgotten},
        {{failed, "le-connection-abort-by-local"}, false, 80ms, ConnectFailure::transient},
        {{failed, "br-connection-canceled"}, true, 1s, ConnectFailure::transient},
        {{failed, "Operation already in progress"}, true, 1ms, ConnectFailure::transient},
        {{failed, "Input/output error"}, false, 1ms, ConnectFailure::transient},
        {{"org.bluez.Error.NotReady", "Resource Not Ready"}, false, 1ms, ConnectFailure::transient},
        {{"org.freedesktop.DBus.Error.NoReply", ""}, true, 1s, ConnectFailure::transient},
        {{"org.freedesktop.DBus.Error.UnknownObject", ""}, true, 1s, ConnectFailure::transient},
        {{"org.freedesktop.DBus.Error.AccessDenied", ""}, false, 1ms, ConnectFailure::final},
        {{"org.bluez.Error.NotAvailable", "br-connection-profile-unavailable"},
         false,
         1ms,
         ConnectFailure::final},
        {{failed, "something new"}, false, 1ms, ConnectFailure::final},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(connectFailure(row.error, row.isBonded, row.elapsed), row.expected)
            << row.error.name.toStdString() << " " << row.error.text.toStdString();
    }
}

TEST(AttributeErrors, carryTheCodeThatTheLinkDecidesBy) {
    const struct {
        BluezError error;
        bool isBonded;
        Kind kind;
        int code;
    } rows[] = {
        {{failed, "Operation failed with ATT error: 0x0e"}, false, Kind::attribute, 5},
        {{failed, "Operation failed with ATT error: 0x0e"}, true, Kind::attribute, 14},
        {{failed, "Operation failed with ATT error: 0x0f"}, true, Kind::attribute, 15},
        {{failed, "Operation failed with ATT error: 0x"}, true, Kind::other, 0},
        {{failed, "Operation failed with ATT error: 0xfffffffff"}, true, Kind::other, 0},
        {{"org.bluez.Error.NotPermitted", "Not paired"}, true, Kind::attribute, 5},
        {{"org.bluez.Error.NotPermitted", "Notify acquired"}, true, Kind::other, 0},
        {{"org.bluez.Error.NotAuthorized", ""}, true, Kind::attribute, 8},
        {{failed, "Not connected"}, true, Kind::other, 0},
    };
    for (const auto& row : rows) {
        const auto error = attributeError(row.error, row.isBonded);
        EXPECT_EQ(error.kind, row.kind) << row.error.text.toStdString();
        EXPECT_EQ(error.code, row.code) << row.error.text.toStdString();
        EXPECT_FALSE(error.description.empty());
    }
}

TEST(Sentences, sayForAPersonWhatBluetoothdSays) {
    const struct {
        BluezError error;
        const char* expected;
    } rows[] = {
        {{failed, "le-connection-abort-by-local"}, "The iPhone did not answer."},
        {{failed, "br-connection-page-timeout"}, "The iPhone did not answer."},
        {{failed, "le-connection-abort-by-remote"}, "The iPhone ended the connection."},
        {{failed, "Operation failed with ATT error: 0x0e"}, "The iPhone reported an unexpected error."},
        {{failed, "Operation failed with ATT error: 0x11"}, "The iPhone is busy."},
        {{"org.bluez.Error.NotPermitted", "Notify acquired"},
         "Another program uses this iPhone's Orbinex service."},
        {{"org.bluez.Error.NotReady", "Resource Not Ready"},
         "Bluetooth is not ready yet. Try again in a moment."},
        {{"org.freedesktop.DBus.Error.AccessDenied", "Rejected send message, 2 matched rules"},
         "Programs of this user may not use Bluetooth on this computer."},
        {{"org.freedesktop.DBus.Error.NoReply", ""},
         "The Bluetooth service of this computer does not answer."},
        {{failed, "something new"}, "Bluetooth reported: something new."},
        {{"org.bluez.Error.New", ""}, "Bluetooth reported: org.bluez.Error.New."},
        {{failed, "Operation failed with ATT error: 0x90"},
         "Bluetooth reported: Operation failed with ATT error: 0x90."},
    };
    for (const auto& row : rows) EXPECT_EQ(sentenceFor(row.error), row.expected);
}

TEST(PairingErrors, areTheOnesThatTheLinkTakesForFailedPairing) {
    EXPECT_FALSE(pairingError({"org.bluez.Error.AlreadyExists", ""}));
    const auto refused = pairingError({"org.bluez.Error.AuthenticationFailed", "Authentication Failed"});
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->code, BluetoothError::insufficientAuthentication);
    const auto late = pairingError({"org.freedesktop.DBus.Error.NoReply", ""});
    ASSERT_TRUE(late);
    EXPECT_EQ(late->kind, Kind::framework);
    EXPECT_EQ(late->code, BluetoothError::encryptionTimedOut);
    const auto other = pairingError({failed, "Operation already in progress"});
    ASSERT_TRUE(other);
    EXPECT_EQ(other->kind, Kind::other);
}

TEST(ConnectSteps, followFromHowThingsStand) {
    const ConnectFacts wanted{.isWanted = true, .isKnown = true, .isInSight = true};
    const auto with = [](ConnectFacts facts, auto change) {
        change(facts);
        return facts;
    };
    const struct {
        const char* situation;
        ConnectFacts facts;
        ConnectStep expected;
    } rows[] = {
        {"nobody asks", {.isKnown = true, .isInSight = true}, ConnectStep::none},
        {"another program's connection", {.isKnown = true, .isConnected = true}, ConnectStep::none},
        {"in sight", wanted, ConnectStep::connect},
        {"out of sight", with(wanted, [](auto& f) { f.isInSight = false; }), ConnectStep::none},
        {"out of sight, but a person waits",
         with(wanted, [](auto& f) { f.isInSight = false, f.isUsersWish = true; }), ConnectStep::connect},
        {"never heard of, though a person waits",
         with(wanted, [](auto& f) { f.isKnown = f.isInSight = false, f.isUsersWish = true; }),
         ConnectStep::none},
        {"turned away a moment ago", with(wanted, [](auto& f) { f.restsUntil = 3s, f.now = 2s; }),
         ConnectStep::waitForRest},
        {"rested", with(wanted, [](auto& f) { f.restsUntil = 3s, f.now = 3s; }), ConnectStep::connect},
        {"being asked", with(wanted, [](auto& f) { f.isConnecting = true; }), ConnectStep::none},
        {"connected before the answer", with(wanted, [](auto& f) { f.isConnecting = f.isConnected = true; }),
         ConnectStep::reportConnected},
        {"connected already", with(wanted, [](auto& f) { f.isConnected = true; }),
         ConnectStep::reportConnected},
        {"connected, but perhaps not for long",
         with(wanted, [](auto& f) { f.isConnected = true, f.isProven = false; }), ConnectStep::waitForProof},
        {"cancelled while being asked",
         {.isConnecting = true, .isCancelling = true},
         ConnectStep::disconnect},
        {"cancelled, and the cancel under way",
         {.isConnecting = true, .isCancelling = true, .isDisconnecting = true},
         ConnectStep::none},
        {"wanted again while the cancel is under way",
         with(wanted, [](auto& f) { f.isUsersWish = f.isCancelling = f.isDisconnecting = true; }),
         ConnectStep::none},
        {"wanted again, still connected after the cancel",
         with(wanted, [](auto& f) { f.isConnected = f.isReported = f.isCancelling = true; }),
         ConnectStep::disconnect},
        {"asked to disconnect a moment ago",
         with(wanted,
              [](auto& f) {
                  f.isConnected = f.isReported = f.isCancelling = true, f.restsUntil = 5s, f.now = 1s;
              }),
         ConnectStep::waitForRest},
        {"cancelled and gone", {.isCancelling = true}, ConnectStep::endCancelling},
        {"dropped", {.isReported = true}, ConnectStep::reportDisconnected},
        {"dropped while pairing", {.isReported = true, .isPairing = true}, ConnectStep::none},
        {"cancelled while pairing, and gone",
         {.isReported = true, .isPairing = true, .isCancelling = true, .isDisconnecting = true},
         ConnectStep::reportDisconnected},
    };
    for (const auto& row : rows) EXPECT_EQ(nextConnectStep(row.facts), row.expected) << row.situation;
}

TEST(Sightings, areReportedAFewTimesASecondAndPassAway) {
    const UUID phone = UUID::literal("00000000-0000-0000-0000-000000000001");
    BluezSightings sightings;
    EXPECT_FALSE(sightings.isInSight(phone, 0s));
    int reports = 0;
    for (auto now = 10'000ms; now < 11'000ms; now += 10ms) reports += sightings.heard(phone, now) ? 1 : 0;
    EXPECT_EQ(reports, 4);
    EXPECT_FALSE(sightings.heard(phone, 10'990ms));
    sightings.reportAnew();
    EXPECT_TRUE(sightings.heard(phone, 10'990ms));
    EXPECT_TRUE(sightings.isInSight(phone, 22'900ms));
    EXPECT_FALSE(sightings.isInSight(phone, 23s));
}

}  // namespace
}  // namespace orbinex
