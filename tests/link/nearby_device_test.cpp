#include <gtest/gtest.h>

#include "link_world.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;

TEST(AdvertisedName, isReadOnlyInItsExactForm) {
    const struct {
        const char* advertised;
        std::optional<AdvertisedName> expected;
    } rows[] = {
        {"OXa1b2c3:Studio iPhone", AdvertisedName{"A1B2C3", "Studio iPhone"}},
        {"OX123456:", AdvertisedName{"123456", ""}},
        {"OX123456: a:b ", AdvertisedName{"123456", " a:b "}},
        {"OX12345:Name", std::nullopt},
        {"OX1234567:Name", std::nullopt},
        {"OXGG1234:Name", std::nullopt},
        {"ox123456:Name", std::nullopt},
        {"OX123456", std::nullopt},
        {"OX:", std::nullopt},
        {":OX123456", std::nullopt},
        {"", std::nullopt},
        {"OX", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseAdvertisedName(row.advertised), row.expected) << row.advertised;
}

TEST(NearbyList, keepsWhatALaterAdvertisementDoesNotTell) {
    const UUID id = LinkWorld::address;
    const auto first = heard(nullptr, id, "OXA1B2C3:Desk", -40, 1s);
    const auto second = heard(&first, id, "", unavailableRSSI, 2s);
    EXPECT_EQ(second, (NearbyDevice{id, "Desk", "A1B2C3", -40, 2s, std::nullopt}));
    EXPECT_EQ(heard(&second, id, "OX00FF00:New", -60, 3s).token, "00FF00");
}

TEST(NearbyList, namesAndRatesAStranger) {
    EXPECT_EQ(heard(nullptr, LinkWorld::address, "", unavailableRSSI, 0s).name, "iPhone");
    EXPECT_EQ(heard(nullptr, LinkWorld::address, "", unavailableRSSI, 0s).rssi, -100);
    EXPECT_EQ(heard(nullptr, LinkWorld::address, "Raw Name", -3, 0s).name, "Raw Name");
    EXPECT_EQ(heard(nullptr, LinkWorld::address, "Raw Name", -3, 0s).token, std::nullopt);
}

TEST(NearbyList, listsUntrustedPhonesStrongestFirstAndStably) {
    const auto device = [](const char* name, int rssi, bool isTrusted) {
        return NearbyDevice{
            UUID::random(), name, std::nullopt,
            rssi,           0s,   isTrusted ? std::optional(LinkWorld::deviceID) : std::nullopt};
    };
    const auto sorted =
        untrustedNearby({device("a", -70, false), device("b", -50, false), device("c", -70, false),
                         device("d", -10, true), device("e", -50, false)});
    std::string order;
    for (const auto& entry : sorted) order += entry.name;
    EXPECT_EQ(order, "beac");
}

TEST(NearbyList, dropsAPhoneWithinFourteenSecondsAndKeepsTheActiveOne) {
    LinkWorld world;
    auto& active = world.addPhone();
    auto& other = world.addPhone("Other", LinkWorld::otherDeviceID, LinkWorld::otherAddress);
    world.establish(active);
    world.link.rescan();
    world.run(2s);
    ASSERT_EQ(world.link.nearbyDevices->size(), 2u);
    other.setAdvertising(false);
    world.run(11s);
    EXPECT_EQ(world.link.nearbyDevices->size(), 2u);
    world.run(3s);
    ASSERT_EQ(world.link.nearbyDevices->size(), 1u);
    EXPECT_EQ(world.link.nearbyDevices->front().id, active.identifier());
    world.run(60s);
    EXPECT_EQ(world.link.nearbyDevices->size(), 1u) << "the connected phone does not advertise and stays";
}

TEST(NearbyList, linksAPhoneWithANewAddressToItsTrustedRecordByToken) {
    LinkWorld world;
    auto& phone = world.addPhone();
    world.link.setAutoConnectEnabled(false);
    world.trustEarlier(phone);
    phone.changeAddress(LinkWorld::newAddress);
    world.run(1500ms);
    ASSERT_EQ(world.link.nearbyDevices->size(), 1u);
    EXPECT_EQ(world.link.nearbyDevices->front().trustedDeviceID, phone.info.deviceID);
    EXPECT_TRUE(world.link.isNearby(phone.info.deviceID));
    EXPECT_TRUE(world.link.untrustedNearbyDevices().empty());
    EXPECT_EQ(*world.link.phase, LinkPhase::searching) << "heard only, with automatic connection off";

    world.link.setAutoConnectEnabled(true);
    world.run(3s);
    EXPECT_EQ(*world.link.phase, LinkPhase::connected);
    EXPECT_EQ(world.store.devices->front().peripheralIdentifier, LinkWorld::newAddress);
}

}  // namespace
}  // namespace orbinex
