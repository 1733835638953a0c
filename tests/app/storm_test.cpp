// Random weather on the air and a restless user, replayed from a seed, with rules that hold after every
// event.

#include <cstdlib>
#include <map>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "app/app_coordinator.h"
#include "protocol/gatt.h"
#include "sim/memory_defaults.h"
#include "sim/recording_bridge.h"
#include "sim/recording_event_poster.h"
#include "sim/scripted_layout.h"
#include "sim/simulated_radio.h"
#include "sim/simulated_shell.h"
#include "sim/virtual_main_queue.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;

/// What is down on the desktop, told from the events alone.
class HeldDown {
  public:
    void follow(RecordingEventPoster& poster) {
        for (const auto& event : poster.events) {
            if (const auto* mouse = std::get_if<MouseEvent>(&event)) {
                if (mouse->type == MouseEvent::Type::leftDown) left_ = true;
                if (mouse->type == MouseEvent::Type::leftUp) left_ = false;
                if (mouse->type == MouseEvent::Type::rightDown) right_ = true;
                if (mouse->type == MouseEvent::Type::rightUp) right_ = false;
            } else if (const auto* key = std::get_if<KeyEvent>(&event)) {
                if (key->isDown) {
                    keys_.insert(key->keycode);
                } else {
                    keys_.erase(key->keycode);
                }
            }
        }
        poster.events.clear();
    }
    [[nodiscard]] bool anything() const { return left_ || right_ || !keys_.empty(); }

  private:
    bool left_ = false;
    bool right_ = false;
    std::set<std::uint16_t> keys_;
};

class Storm {
  public:
    /// Checks made in each phase, over all storms.
    using Visits = std::map<LinkPhase, int>;

    Storm(std::uint64_t seed, Visits& visits) : random_(seed), visits_(visits) {
        for (int i = 0; i < 3; ++i) {
            phones_.push_back(&radio_.addPhone(
                UUID::random(random_), DeviceInfo{2, UUID::random(random_), "Phone " + std::to_string(i)}));
        }
        start();
    }

    void step() {
        switch (pick(10)) {
            case 0:
            case 1:
            case 2: weather(*phones_[pick(phones_.size())]); break;
            case 3:
            case 4: user(); break;
            case 5: traffic(*phones_[pick(phones_.size())]); break;
            case 6:
                if (chance(40)) restart();
                if (chance(radio_.state() == BluetoothState::poweredOn ? 30 : 3)) power();
                break;
            default:
                queue_.advance(pick(3) == 0 ? std::chrono::milliseconds(pick(20'000))
                                            : std::chrono::milliseconds(pick(200)));
        }
        queue_.runDue();
        check();
    }

    /// However things stand: once radio and phones behave, the user's wish is carried out.
    void clearUp() {
        for (auto* phone : phones_) {
            for (auto* step : {&phone->connectStep, &phone->servicesStep, &phone->characteristicsStep,
                               &phone->infoStep, &phone->subscribeStep}) {
                *step = PhoneStep{};
            }
            phone->hasService = true;
            phone->missingCharacteristics.clear();
            phone->infoValue.reset();
            phone->info.protocolVersion = 2;
            phone->isConnectedElsewhere = false;
            phone->setInRange(true);
            phone->setAdvertising(true);
        }
        poster_.failsToCreateEvents = false;
        if (radio_.state() != BluetoothState::poweredOn) radio_.setState(BluetoothState::poweredOn);
        queue_.advance(70s);
        check();
        auto& wanted = *phones_[pick(phones_.size())];
        auto& link = app_->centralManager;
        link.disconnect();
        // A background request to another phone may be answered first; over its session the wish prevails.
        for (int tries = 0; tries < 2; ++tries) {
            link.rescan();
            queue_.advance(3s);
            forgotten_.clear();
            const auto record = app_->trustStore.deviceWithID(wanted.info.deviceID);
            if (record && chance(2)) {
                link.connectTrustedDevice(*record);
            } else {
                link.connectNearbyDevice(wanted.identifier());
            }
            queue_.advance(5s);
            check();
        }
        ASSERT_EQ(*link.phase, LinkPhase::connected) << *link.statusMessage;
        ASSERT_EQ(link.activeDevice.get()->name, wanted.info.name);
        // And what drops now comes back by itself.
        wanted.dropLink();
        queue_.advance(70s);
        check();
        if (*app_->preferences.autoConnect) {
            ASSERT_EQ(*link.phase, LinkPhase::connected) << *link.statusMessage;
        }
        ASSERT_LE(radio_.connectedCount(), 1u);
    }

  private:
    std::size_t pick(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
    }
    bool chance(std::size_t oneIn) { return pick(oneIn) == 0; }

    void start() {
        preferences_ = std::make_unique<AppPreferences>(defaults_);
        app_ = std::make_unique<AppCoordinator>(
            *preferences_, AppCoordinator::Ports{queue_, defaults_, radio_, wake_, poster_, layouts_, bridge_,
                                                 [] { return std::string("Host"); }, shell_.ports()});
    }

    /// The program ends and is started again, with everything that was under way.
    void restart() {
        app_.reset();
        held_.follow(poster_);
        ASSERT_FALSE(held_.anything()) << "held after the program's end";
        ASSERT_EQ(radio_.connectedCount() + radio_.requestCount(), 0u);
        ASSERT_FALSE(radio_.isScanning());
        queue_.advance(std::chrono::milliseconds(pick(3000)));
        preferences_.reset();
        start();
    }

    void power() {
        constexpr BluetoothState others[] = {BluetoothState::poweredOff, BluetoothState::resetting,
                                             BluetoothState::unauthorized};
        radio_.setState(radio_.state() == BluetoothState::poweredOn ? others[pick(3)]
                                                                    : BluetoothState::poweredOn);
    }

    std::optional<BluetoothError> anyError() {
        using Failure = BluetoothError::Kind;
        constexpr Failure kinds[] = {Failure::attribute, Failure::framework, Failure::other};
        constexpr int codes[] = {5, 12, 14, 15, 1};
        return BluetoothError{kinds[pick(3)], codes[pick(5)], "Some error."};
    }

    void weather(SimulatedPhone& phone) {
        PhoneStep* steps[] = {&phone.connectStep, &phone.servicesStep, &phone.characteristicsStep,
                              &phone.infoStep, &phone.subscribeStep};
        auto& step = *steps[pick(5)];
        switch (pick(14)) {
            case 0: step.error = anyError(); break;
            case 1: step.isAnswered = false; break;
            case 2: step.delay = std::chrono::milliseconds(pick(30'000)); break;
            case 3:
            case 4: step = PhoneStep{}; break;
            case 5: phone.setInRange(!phone.isInRange()); break;
            case 6: phone.setAdvertising(!phone.isAdvertising()); break;
            case 7: phone.dropLink(chance(2) ? anyError() : std::nullopt); break;
            case 8:
                if (phone.hasService) {
                    phone.withdrawService();
                } else {
                    phone.hasService = true;
                }
                break;
            case 9: phone.changeAddress(UUID::random(random_)); break;
            case 10: phone.isConnectedElsewhere = !phone.isConnectedElsewhere; break;
            case 11: phone.info.protocolVersion = chance(3) ? 3 : 2; break;
            case 12:
                phone.missingCharacteristics.clear();
                if (chance(3))
                    phone.missingCharacteristics.insert(OrbinexProtocol::controlCharacteristicUUID);
                break;
            default: radio_.setReportsCancelledRequests(chance(2)); break;
        }
    }

    void user() {
        auto& link = app_->centralManager;
        const auto& trusted = *app_->trustStore.devices;
        const auto& phone = *phones_[pick(phones_.size())];
        const auto what = pick(12);
        if (what < 5) forgotten_.clear();
        switch (what) {
            case 0:
            case 1:
            case 2: link.connectNearbyDevice(phone.identifier()); break;
            case 3: link.connectPeripheral({phone.identifier(), phone.info.name}, phone.info.name); break;
            case 4:
                if (!trusted.empty()) link.connectTrustedDevice(TrustedDevice(trusted[pick(trusted.size())]));
                break;
            case 5: link.cancelConnectionAttempt(); break;
            case 6: link.disconnect(); break;
            case 7:
                if (!trusted.empty()) {
                    const TrustedDevice device = trusted[pick(trusted.size())];
                    forgotten_.insert(device.id);
                    link.forgetDevice(device);
                }
                break;
            case 8: link.rescan(); break;
            case 9: preferences_->setAutoConnect(!chance(4)); break;
            case 10: wake_.didWake.emit(); break;
            default: link.dismissAlert(); break;
        }
    }

    void traffic(SimulatedPhone& phone) {
        const auto state = chance(2) ? KeyState::pressed : KeyState::released;
        switch (pick(6)) {
            case 0:
                phone.send(DecodedPacket{DecodedPacket::MouseButtonChange{
                    chance(2) ? MouseButton::left : MouseButton::right, state}});
                break;
            case 1:
                phone.send(DecodedPacket{DecodedPacket::KeyStroke{
                    static_cast<std::uint16_t>(pick(130)), {static_cast<std::uint8_t>(pick(256))}, state}});
                break;
            case 2: phone.send(DecodedPacket{DecodedPacket::MouseMove{3, 4}}); break;
            case 3:
                if (chance(4)) phone.send(ControlMessage{ControlMessage::DisconnectRequest{}});
                break;
            case 4: {
                // A storm of packets, some of them nonsense.
                Bytes bytes(pick(24));
                for (auto& byte : bytes) byte = static_cast<std::uint8_t>(pick(256));
                if (!bytes.empty() && chance(2)) bytes[0] = static_cast<std::uint8_t>(1 + pick(6));
                for (int i = 0; i < 5; ++i) phone.notify(OrbinexProtocol::mouseCharacteristicUUID, bytes);
                if (!bytes.empty()) bytes[0] = 0x16;
                phone.notify(OrbinexProtocol::controlCharacteristicUUID, bytes);
                break;
            }
            default: poster_.failsToCreateEvents = false; break;
        }
    }

    void check() {
        const auto& link = app_->centralManager;
        const auto phase = *link.phase;
        ++visits_[phase];
        const bool isOn = radio_.state() == BluetoothState::poweredOn;
        ASSERT_EQ(phase == LinkPhase::bluetoothUnavailable, !isOn);
        const bool isActive =
            phase == LinkPhase::connecting || phase == LinkPhase::securing || phase == LinkPhase::connected;
        ASSERT_EQ(link.activeDevice->has_value(), isActive) << *link.statusMessage;
        ASSERT_EQ(link.session().has_value(), phase == LinkPhase::securing || phase == LinkPhase::connected);
        if (phase == LinkPhase::connected) {
            ASSERT_TRUE(link.session()->deviceInfo);
            ASSERT_EQ(link.activeDevice.get()->deviceID, link.session()->deviceInfo->deviceID);
            ASSERT_TRUE(app_->trustStore.deviceWithID(link.session()->deviceInfo->deviceID));
        }
        if (link.session()) {
            ASSERT_TRUE(radio_.isConnected(link.session()->peripheral.identifier));
        }
        ASSERT_EQ(bridge_.isConnected, phase == LinkPhase::connected);
        ASSERT_EQ(*link.isScanning, radio_.isScanning());
        if (phase == LinkPhase::searching) {
            ASSERT_TRUE(*link.isScanning);
        }
        held_.follow(poster_);
        bridge_.commands.clear();
        bridge_.transportKeys.clear();
        if (phase != LinkPhase::connected) {
            ASSERT_FALSE(held_.anything()) << "held without a session";
        }
        ASSERT_LT(queue_.pendingTimers(), 100u);
        for (const auto& id : forgotten_) ASSERT_FALSE(app_->trustStore.deviceWithID(id)) << "trusted again";
        for (const auto& nearby : *link.nearbyDevices) {
            if (nearby.trustedDeviceID) {
                ASSERT_TRUE(app_->trustStore.deviceWithID(*nearby.trustedDeviceID));
            }
        }
    }

    std::mt19937_64 random_;
    Visits& visits_;
    VirtualMainQueue queue_;
    MemoryDefaults defaults_;
    SimulatedRadio radio_{queue_};
    WakeNotifier wake_;
    RecordingEventPoster poster_;
    ScriptedLayoutSource layouts_;
    RecordingBridge bridge_;
    std::vector<SimulatedPhone*> phones_;
    SimulatedShell shell_;
    std::unique_ptr<AppPreferences> preferences_;
    std::unique_ptr<AppCoordinator> app_;
    HeldDown held_;
    std::set<UUID> forgotten_;  ///< since the user last asked for a connection
};

TEST(Storm, keepsTheRulesAndEndsWell) {
    constexpr int stepsPerSeed = 10'000;
    // Replays one storm when something went wrong in it.
    const char* wanted = std::getenv("ORBINEX_STORM_SEED");
    const std::uint64_t first = wanted ? std::strtoull(wanted, nullptr, 10) : 1;
    const std::uint64_t last = wanted ? first : 80;
    Storm::Visits visits;
    for (std::uint64_t seed = first; seed <= last; ++seed) {
        Storm storm(seed, visits);
        for (int step = 0; step < stepsPerSeed; ++step) {
            storm.step();
            if (step % 500 == 499) storm.clearUp();
            ASSERT_FALSE(testing::Test::HasFatalFailure())
                << "ORBINEX_STORM_SEED=" << seed << ", step " << step;
        }
    }
    if (wanted) return;
    for (const auto phase : {LinkPhase::bluetoothUnavailable, LinkPhase::searching, LinkPhase::connecting,
                             LinkPhase::securing, LinkPhase::connected}) {
        EXPECT_GT(visits[phase], 1000) << static_cast<int>(phase);
    }
}

}  // namespace
}  // namespace orbinex
