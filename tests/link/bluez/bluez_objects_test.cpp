#include "link/bluez/bluez_objects.h"

#include <QDBusObjectPath>

#include <gtest/gtest.h>

#include "link/bluez/bluez_names.h"
#include "protocol/gatt.h"

namespace orbinex {
namespace {

const QString devicePath = "/org/bluez/hci0/dev_00_AA_01_01_00_01";
const QString serviceText = QString::fromStdString(OrbinexProtocol::serviceUUID.text()).toLower();

QVariantMap phone() {
    return {{"Adapter", QVariant::fromValue(QDBusObjectPath("/org/bluez/hci0"))},
            {"Address", "00:AA:01:01:00:01"},
            {"AddressType", "random"},
            {"Name", "OXA1B2C3:Studio iPhone"},
            {"RSSI", QVariant::fromValue<short>(-60)},
            {"Paired", true},
            {"Bonded", false},
            {"Connected", true},
            {"ServicesResolved", true},
            {"UUIDs", QStringList{"garbage", serviceText}}};
}

TEST(BluezObjects, tellOfADevice) {
    BluezObjects objects;
    objects.add(devicePath, {{Bluez::device, phone()}});
    const auto device = readDevice(objects, devicePath);
    ASSERT_TRUE(device);
    EXPECT_EQ(device->adapter, "/org/bluez/hci0");
    EXPECT_TRUE(device->isAddressRandom);
    EXPECT_EQ(device->name, "OXA1B2C3:Studio iPhone");
    EXPECT_EQ(device->rssi, -60);
    EXPECT_FALSE(device->isBonded) << "paired without keys that are kept";
    EXPECT_TRUE(device->offers(OrbinexProtocol::serviceUUID));
    EXPECT_EQ(device->services.size(), 1U);

    objects.change(devicePath, Bluez::device, {{"Connected", false}}, {"RSSI", "Bonded"});
    const auto later = readDevice(objects, devicePath);
    ASSERT_TRUE(later);
    EXPECT_FALSE(later->rssi);
    EXPECT_TRUE(later->isConnected) << "nothing is resolved without a connection";
    EXPECT_TRUE(later->isBonded) << "an older bluetoothd tells of pairing only";

    objects.change("/elsewhere", Bluez::device, {{"Connected", true}}, {});
    EXPECT_FALSE(readDevice(objects, "/elsewhere"));
    objects.remove(devicePath, {Bluez::device});
    EXPECT_FALSE(readDevice(objects, devicePath));
}

TEST(BluezObjects, surviveEveryPropertyWithEveryWrongType) {
    const QVariantList wrong{{},
                             7,
                             -1.5,
                             QString(100'000, 'x'),
                             QString("00:AA:01:01:00:0g"),
                             QByteArray("\xff\x00", 2),
                             QStringList{"", "\x01"},
                             QVariantMap{{"a", 1}},
                             true,
                             QVariant::fromValue(QDBusObjectPath("/"))};
    auto properties = phone();
    properties["Powered"] = true;
    properties["Roles"] = QStringList{"central"};
    properties["UUID"] = serviceText;
    properties["Service"] = QVariant::fromValue(QDBusObjectPath("/s"));
    properties["Flags"] = QStringList{"notify"};
    for (const auto& name : properties.keys()) {
        for (const auto& value : wrong) {
            auto damaged = properties;
            damaged[name] = value;
            BluezObjects objects;
            objects.add(devicePath, {{Bluez::device, damaged},
                                     {Bluez::adapter, damaged},
                                     {Bluez::gattService, damaged},
                                     {Bluez::characteristic, damaged}});
            EXPECT_EQ(readDevice(objects, devicePath).has_value(), name != "Address") << name.toStdString();
            EXPECT_TRUE(readAdapter(objects, devicePath));
            EXPECT_EQ(readServiceUUID(objects, devicePath).has_value(), name != "UUID");
            EXPECT_EQ(readCharacteristic(objects, devicePath).has_value(), name != "UUID");
        }
    }
}

TEST(BluezObjects, findTheServiceWhereItIsNow) {
    const QVariantMap service{{"UUID", serviceText}};
    BluezObjects objects;
    objects.add(devicePath, {{Bluez::device, phone()}});
    objects.add(devicePath + "/service0015", {{Bluez::gattService, service}});
    objects.add(devicePath + "2/service0099", {{Bluez::gattService, service}});
    const auto find = [&] { return findService(objects, devicePath, OrbinexProtocol::serviceUUID); };
    EXPECT_EQ(find(), devicePath + "/service0015");
    objects.add(devicePath + "/service0021", {{Bluez::gattService, service}});
    EXPECT_EQ(find(), devicePath + "/service0021");
    objects.remove(devicePath + "/service0021", {Bluez::gattService});
    objects.remove(devicePath + "/service0015", {Bluez::gattService});
    EXPECT_EQ(find(), "") << "another device's is not ours";

    const QString info = QString::fromStdString(OrbinexProtocol::infoCharacteristicUUID.text());
    const QVariantMap characteristic{
        {"UUID", info},
        {"Service", QVariant::fromValue(QDBusObjectPath(devicePath + "/service0021"))},
        {"Flags", QStringList{"read", "write-without-response"}},
        {"NotifyAcquired", false}};
    objects.add(devicePath + "/service0021/char0022", {{Bluez::characteristic, characteristic}});
    objects.add(devicePath + "/service0021/char0025", {{Bluez::characteristic, {}}});
    const auto found = characteristicsOf(objects, devicePath + "/service0021");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].uuid, OrbinexProtocol::infoCharacteristicUUID);
    EXPECT_TRUE(found[0].canWriteWithoutResponse);
    EXPECT_TRUE(found[0].offersNotifySocket);
}

}  // namespace
}  // namespace orbinex
