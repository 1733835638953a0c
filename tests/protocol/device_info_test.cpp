#include "protocol/device_info.h"

#include <gtest/gtest.h>

#include "protocol/gatt.h"
#include "support/byte_transcript.h"

using namespace orbinex;
using orbinex::test::hex;

namespace {

constexpr std::string_view headerBytes = "02 E2 C3 62 B1 CE 63 4C 23 95 D9 36 65 3E BF 89 A6";

TEST(DeviceInfo, isAVersionAnIdentifierAndTheRestAName) {
    const Bytes value = hex(std::string(headerBytes) + " C3 89 20 F0 9F 93 B1");
    const auto info = DeviceInfo::decode(value);
    ASSERT_TRUE(info);
    EXPECT_EQ(*info,
              (DeviceInfo{2, UUID::literal("E2C362B1-CE63-4C23-95D9-36653EBF89A6"), "\u00C9 \U0001F4F1"}));
    EXPECT_EQ(info->encode(), value);
}

TEST(DeviceInfo, hasAnEmptyNameWhenNothingFollowsAndIsNothingWhenShorter) {
    const Bytes value = hex(headerBytes);
    for (std::size_t length = 0; length < value.size(); ++length) {
        EXPECT_FALSE(DeviceInfo::decode(ByteView(value).first(length))) << length;
    }
    const auto info = DeviceInfo::decode(value);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->name, "");
}

TEST(DeviceInfo, repairsABrokenName) {
    const auto info = DeviceInfo::decode(hex(std::string(headerBytes) + " 41 C3 42 FF"));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->name,
              "A\uFFFD"
              "B\uFFFD");
}

TEST(ProtocolVersion, mustBeEqual) {
    EXPECT_EQ(compareVersion(0), VersionMatch::peerOlder);
    EXPECT_EQ(compareVersion(1), VersionMatch::peerOlder);
    EXPECT_EQ(compareVersion(2), VersionMatch::compatible);
    EXPECT_EQ(compareVersion(3), VersionMatch::peerNewer);
    EXPECT_EQ(compareVersion(255), VersionMatch::peerNewer);
}

TEST(GATTIdentifiers, areThoseThatThePhonePublishes) {
    EXPECT_EQ(OrbinexProtocol::serviceUUID.text(), "E2C362B1-CE63-4C23-95D9-36653EBF89A6");
    EXPECT_EQ(OrbinexProtocol::mouseCharacteristicUUID.text(), "4F2E72E9-A12A-4D3E-B3A9-F2E3A0E9311A");
    EXPECT_EQ(OrbinexProtocol::keyboardCharacteristicUUID.text(), "1A3B5C7D-E9F0-4A1B-2C3D-4E5F6A7B8C9D");
    EXPECT_EQ(OrbinexProtocol::infoCharacteristicUUID.text(), "7BEAF09E-8D9F-40BF-B2DA-FDEA73616D62");
    EXPECT_EQ(OrbinexProtocol::controlCharacteristicUUID.text(), "E8D6996B-3188-48E1-8120-39EDF0798AF2");
}

}  // namespace
