// The whole link on a bluetoothd: what a person sees from the first connection to the automatic next one.

#include <gtest/gtest.h>

#include "bluez_world.h"
#include "link/central_ble_manager.h"
#include "protocol/device_info.h"
#include "protocol/gatt.h"
#include "sim/recording_bridge.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;
using namespace OrbinexProtocol;

QByteArray toQt(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

TEST(BluezLink, tellsThePersonHowItGoes) {
    BluezWorld world;
    // The link starts the central anew, with itself as the one who is told.
    world.central->stop();
    TrustedDeviceStore store{world.defaults, "trustedDevices.v1"};
    RecordingBridge bridge;
    Lines lines;
    std::vector<DecodedPacket> packets;
    {
        CentralBLEManager link(
            store, {world.queue, *world.central, world.wake, bridge, [] { return std::string("Desk"); }});
        const auto observer =
            link.statusMessage.onDidChange([&](const auto& line) { lines.push_back(line); });
        link.onInputPacket = [&](const DecodedPacket& packet) { packets.push_back(packet); };
        const UUID device = UUID::literal("A1B2C3D4-0000-4000-8000-000000000001");
        world.phone.info = toQt(DeviceInfo{protocolVersion, device, "Studio iPhone"}.encode());

        world.run(2s);
        ASSERT_EQ(link.untrustedNearbyDevices().size(), 1U);
        link.connectNearbyDevice(link.untrustedNearbyDevices()[0].id);
        world.run(2s);
        const DecodedPacket move{DecodedPacket::MouseMove{1, -2}};
        world.bluez.notify(world.phone, mouseCharacteristicUUID, toQt(move.encode()));
        world.settle();
        EXPECT_EQ(packets, std::vector{move});
        EXPECT_EQ(lines, (Lines{"Starting Bluetooth…", "Searching for iPhones running Orbinex…",
                                "Connecting to Studio iPhone…", "Securing connection with Studio iPhone…",
                                "Connected to Studio iPhone"}));
        EXPECT_FALSE(world.bluez.isDiscovering());
        EXPECT_EQ(world.prompt.asked, Lines{"Studio iPhone 001234"});

        lines.clear();
        world.bluez.drop(world.phone);
        world.run(10s);
        EXPECT_EQ(lines.front(), "Connection to Studio iPhone lost — reconnecting…");
        EXPECT_EQ(lines.back(), "Connected to Studio iPhone");
        world.bluez.notify(world.phone, mouseCharacteristicUUID, toQt(move.encode()));
        world.settle();
        EXPECT_EQ(packets.size(), 2U);
        EXPECT_EQ(world.prompt.asked.size(), 1U);
        EXPECT_FALSE(*link.alert);
    }
    world.settle();
    EXPECT_FALSE(world.bluez.isConnected(world.phone));
}

}  // namespace
}  // namespace orbinex::test
