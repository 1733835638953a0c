#include "app/app_coordinator.h"

#include <gtest/gtest.h>

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

struct Program {
    Program() = default;
    /// With a setting of an earlier run.
    Program(const char* key, bool value)
        : preferences([&]() -> UserDefaults& {
              defaults.setBoolean(key, value);
              return defaults;
          }()) {}

    VirtualMainQueue queue;
    MemoryDefaults defaults;
    SimulatedRadio radio{queue};
    WakeNotifier wake;
    RecordingEventPoster poster;
    ScriptedLayoutSource layouts;
    RecordingBridge bridge;
    SimulatedShell shell;
    AppPreferences preferences{defaults};
    SimulatedPhone& phone = radio.addPhone(UUID::random(), {2, UUID::random(), "Studio iPhone"});
    AppCoordinator app{
        preferences,
        {queue, defaults, radio, wake, poster, layouts, bridge, [] { return std::string(); }, shell.ports()}};

    void establish() {
        queue.advance(2s);
        app.centralManager.connectNearbyDevice(phone.identifier());
        queue.advance(2s);
        ASSERT_EQ(*app.centralManager.phase, LinkPhase::connected);
    }
};

TEST(AppCoordinator, leadsInputToTheDesktopAndLetsGoWhenTheLinkDrops) {
    Program program;
    program.establish();
    program.phone.send(DecodedPacket{DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::pressed}});
    program.phone.send(DecodedPacket{DecodedPacket::MouseMove{5, 0}});
    program.queue.runDue();
    ASSERT_EQ(program.poster.events.size(), 2u);
    EXPECT_EQ(std::get<MouseEvent>(program.poster.events[1]).type, MouseEvent::Type::leftDragged);

    program.phone.setInRange(false);
    program.queue.runDue();
    ASSERT_EQ(program.poster.events.size(), 3u);
    EXPECT_EQ(std::get<MouseEvent>(program.poster.events[2]).type, MouseEvent::Type::leftUp);
}

TEST(AppCoordinator, tellsTheEditorBridgeOfPressedKeys) {
    Program program;
    program.establish();
    program.phone.send(DecodedPacket{DecodedPacket::KeyStroke{49, ModifierFlags::shift, KeyState::pressed}});
    program.phone.send(DecodedPacket{DecodedPacket::KeyStroke{49, ModifierFlags::shift, KeyState::released}});
    program.queue.runDue();
    EXPECT_EQ(program.bridge.transportKeys,
              (std::vector{std::pair(std::uint16_t{49}, ModifierFlags::shift)}));
}

TEST(AppCoordinator, storesTheTrustedPhoneAndFindsItAgainAfterARestart) {
    Program program;
    program.establish();
    Program next;
    next.defaults.values = program.defaults.values;
    next.app.trustStore.load();
    EXPECT_EQ(*next.app.trustStore.devices, *program.app.trustStore.devices);
    EXPECT_TRUE(program.defaults.data("trustedDevices.v1"));
}

TEST(AppPreferences, areStoredAndFollowedOncePerChange) {
    Program program;
    auto& link = program.app.centralManager;
    EXPECT_TRUE(link.autoConnectEnabled());
    int changes = 0;
    const auto observer = program.preferences.autoConnect.onDidChange([&](bool) { ++changes; });
    program.preferences.setAutoConnect(true);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(program.defaults.boolean("autoConnect"), std::nullopt) << "setting what it is stores nothing";
    program.preferences.setAutoConnect(false);
    EXPECT_FALSE(link.autoConnectEnabled());
    EXPECT_EQ(program.defaults.boolean("autoConnect"), false);
    program.preferences.setAutoConnect(true);
    EXPECT_TRUE(link.autoConnectEnabled());
    EXPECT_EQ(changes, 2);
}

TEST(AppPreferences, areHonouredFromTheStart) {
    Program program("autoConnect", false);
    EXPECT_FALSE(program.app.centralManager.autoConnectEnabled());
}

TEST(AppPreferences, areReadAtTheStart) {
    MemoryDefaults defaults;
    EXPECT_EQ(AppPreferences(defaults).commandKey(), CommandKey::control);
    defaults.setString("commandKey", "super");
    defaults.setBoolean("autoConnect", false);
    const AppPreferences preferences(defaults);
    EXPECT_EQ(preferences.commandKey(), CommandKey::super);
    EXPECT_FALSE(*preferences.autoConnect);
    defaults.setString("commandKey", "hyper");
    EXPECT_EQ(AppPreferences(defaults).commandKey(), CommandKey::control);
}

}  // namespace
}  // namespace orbinex
