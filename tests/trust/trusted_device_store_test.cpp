#include "trust/trusted_device_store.h"

#include <limits>

#include <gtest/gtest.h>

#include "sim/memory_defaults.h"

namespace orbinex {
namespace {

constexpr UUID idA = UUID::literal("A1B2C3D4-0000-4000-8000-000000000001");
constexpr UUID idB = UUID::literal("B1B2C3D4-0000-4000-8000-000000000002");
constexpr UUID peripheral = UUID::literal("0F0F0F0F-0000-4000-8000-0000000000AA");
constexpr const char* key = "trustedDevices.v1";

Date at(double seconds) {
    return Date(Seconds(seconds));
}

TrustedDevice record(const UUID& id, const std::string& name, Date added, std::optional<Date> connected = {},
                     std::optional<UUID> peripheralID = {}) {
    return {id, name, id.text().substr(0, 6), peripheralID, added, connected};
}

std::vector<std::string> names(const TrustedDeviceStore& store) {
    std::vector<std::string> result;
    for (const auto& device : *store.devices) result.push_back(device.name);
    return result;
}

TEST(TrustedDeviceStore, writesTheStoredFormToTheLetter) {
    MemoryDefaults defaults;
    TrustedDeviceStore store(defaults, key);
    store.trust(record(idA, "Älteste \"Nr. 1\"", at(0.5)));
    store.trust(record(idB, "B", at(10), at(802'000'000.125), peripheral));
    EXPECT_EQ(
        defaults.data(key),
        R"([{"dateAdded":10.0,"id":"B1B2C3D4-0000-4000-8000-000000000002","lastConnected":802000000.125,)"
        R"("name":"B","peripheralIdentifier":"0F0F0F0F-0000-4000-8000-0000000000AA","token":"B1B2C3"},)"
        R"({"dateAdded":0.5,"id":"A1B2C3D4-0000-4000-8000-000000000001","name":"Älteste \"Nr. 1\"",)"
        R"("token":"A1B2C3"}])");
    EXPECT_EQ(*TrustedDeviceStore(defaults, key).devices, *store.devices);
}

TEST(TrustedDeviceStore, readsOnlyAWholeList) {
    const std::string good =
        R"({"id":"a1b2c3d4-0000-4000-8000-000000000001","name":"n","token":"t","dateAdded":1,"extra":[{}]})";
    const struct {
        std::string stored;
        std::size_t count;
    } rows[] = {
        {"[]", 0},
        {"[" + good + "]", 1},
        {" [\n" + good + " , " + good + "]", 2},
        {R"([{"id":"A1B2C3D4-0000-4000-8000-000000000001","name":"n","token":"t","dateAdded":1.5e2,)"
         R"("lastConnected":null,"peripheralIdentifier":null}])",
         1},
        {"[" + good + R"(,{"id":"A1B2C3D4-0000-4000-8000-000000000001","name":"n","dateAdded":1}])", 0},
        {R"([{"id":"A1B2C3D4","name":"n","token":"t","dateAdded":1}])", 0},
        {R"([{"id":"A1B2C3D4-0000-4000-8000-000000000001","name":1,"token":"t","dateAdded":1}])", 0},
        {R"([{"id":"A1B2C3D4-0000-4000-8000-000000000001","name":"n","token":"t","dateAdded":"1"}])", 0},
        {R"([{"id":"A1B2C3D4-0000-4000-8000-000000000001","name":"n","token":"t","dateAdded":1e999}])", 0},
        {R"([{"id":"A1B2C3D4-0000-4000-8000-000000000001","name":"n","token":"t","dateAdded":1,"lastConnected":true}])",
         0},
        {"[" + good, 0},
        {good, 0},
        {"[1]", 0},
        {"", 0},
        {std::string("\xFF\x00[", 3), 0},
        {std::string(100'000, '['), 0},
    };
    for (const auto& row : rows) {
        MemoryDefaults defaults;
        defaults.setData(key, row.stored);
        const TrustedDeviceStore store(defaults, key);
        EXPECT_EQ(store.devices->size(), row.count) << row.stored.substr(0, 120);
        EXPECT_EQ(defaults.data(key), row.stored) << "reading changes nothing";
    }
}

TEST(TrustedDeviceStore, keepsTheStoredValueWhenAListCannotBeEncoded) {
    MemoryDefaults defaults;
    TrustedDeviceStore store(defaults, key);
    store.trust(record(idA, "good", at(1)));
    const auto stored = defaults.data(key);
    store.trust(record(idB, "bad \xFF", at(2)));
    EXPECT_EQ(defaults.data(key), stored);
    EXPECT_EQ(store.devices->size(), 2u);
    store.remove(idB);
    store.trust(record(idB, "never", at(std::numeric_limits<double>::infinity())));
    EXPECT_EQ(defaults.data(key), stored);
}

TEST(TrustedDeviceStore, ordersByLastConnectionElseByDateAddedAndStably) {
    MemoryDefaults defaults;
    TrustedDeviceStore store(defaults, key);
    store.trust(record(UUID::random(), "yesterday", at(0), at(100)));
    store.trust(record(UUID::random(), "added today", at(200)));
    store.trust(record(UUID::random(), "same day first", at(50)));
    store.trust(record(UUID::random(), "same day second", at(10), at(50)));
    EXPECT_EQ(names(store),
              (std::vector<std::string>{"added today", "yesterday", "same day first", "same day second"}));
}

TEST(TrustedDeviceStore, replacesByDeviceAndByPeripheral) {
    MemoryDefaults defaults;
    TrustedDeviceStore store(defaults, key);
    store.trust(record(idA, "old", at(1)));
    store.trust(record(idA, "same device", at(2), {}, peripheral));
    EXPECT_EQ(names(store), std::vector<std::string>{"same device"});
    store.trust(record(idB, "same peripheral", at(1), {}, peripheral));
    EXPECT_EQ(names(store), std::vector<std::string>{"same peripheral"});
    store.trust(record(idA, "no peripheral", at(0)));
    EXPECT_EQ(store.devices->size(), 2u) << "two records without a peripheral do not collide";
}

TEST(TrustedDeviceStore, findsARecordByEachOfItsNames) {
    MemoryDefaults defaults;
    TrustedDeviceStore store(defaults, key);
    store.trust(record(idA, "a", at(1), {}, peripheral));
    store.trust(record(idB, "b", at(2)));
    EXPECT_EQ(store.deviceForPeripheral(peripheral)->name, "a");
    EXPECT_EQ(store.deviceForPeripheral(idB), std::nullopt);
    EXPECT_EQ(store.deviceForToken("b1b2c3")->name, "b");
    EXPECT_EQ(store.deviceForToken("b1b2c"), std::nullopt);
    EXPECT_EQ(store.deviceWithID(idA)->name, "a");
    EXPECT_EQ(store.deviceWithID(peripheral), std::nullopt);
}

}  // namespace
}  // namespace orbinex
