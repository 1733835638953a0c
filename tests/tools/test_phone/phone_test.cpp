#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "protocol/device_info.h"
#include "protocol/input_packet.h"
#include "sim/virtual_main_queue.h"
#include "test_phone/host_watch.h"
#include "test_phone/identity.h"
#include "test_phone/numbered_moves.h"
#include "test_phone/options.h"
#include "test_phone/steady_run.h"

namespace orbinex::test_phone {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(PhoneOptions, describeThePhone) {
    const std::vector<std::string> arguments{
        "--adapter",   "hci2",        "--name",
        "Ein Telefon", "--device-id", "abcdef01-0000-4000-8000-000000000001",
        "--version",   "3",           "--missing",
        "mouse",       "--missing",   "control",
        "--info",      "encrypted",   "--pairing",
        "refuse"};
    const auto options = std::get<Options>(parseOptions(arguments));
    EXPECT_EQ(options.adapter, "hci2");
    EXPECT_EQ(options.name, "Ein Telefon");
    EXPECT_EQ(options.deviceID, UUID::literal("ABCDEF01-0000-4000-8000-000000000001"));
    EXPECT_EQ(options.protocolVersion, 3);
    EXPECT_THAT(options.missing, ElementsAre(Characteristic::mouse, Characteristic::control));
    EXPECT_EQ(options.infoAccess, InfoAccess::encrypted);
    EXPECT_EQ(options.pairing, PairingAnswer::refuse);
}

TEST(PhoneOptions, areRefusedWhenWrong) {
    for (const auto& [option, value] :
         {std::pair("--version", "256"), std::pair("--version", "-1"), std::pair("--version", "x"),
          std::pair("--device-id", "1234"), std::pair("--missing", "all"), std::pair("--info", "any"),
          std::pair("--pairing", ""), std::pair("--adapter", ""), std::pair("--name", "\xC3"),
          std::pair("--colour", "red")}) {
        const std::vector<std::string> arguments{option, value};
        EXPECT_TRUE(std::holds_alternative<Mistake>(parseOptions(arguments))) << option << " " << value;
    }
    EXPECT_TRUE(std::holds_alternative<Mistake>(parseOptions(std::vector<std::string>{"--name"})));
}

TEST(PhoneIdentity, advertisesWhatFitsIntoOneScanResponse) {
    const auto id = UUID::literal("A1B2C3D4-0000-4000-8000-000000000001");
    const struct {
        const char* name;
        const char* advertised;
    } rows[] = {
        {"Studio iPhone", "OXA1B2C3:Studio iPhone"},
        {"", "OXA1B2C3:"},
        {"12345678901234567890", "OXA1B2C3:12345678901234567890"},
        {"123456789012345678901", "OXA1B2C3:12345678901234567890"},
        {"1234567890123456789ä", "OXA1B2C3:1234567890123456789"},
        {"Studio 👩‍👩‍👧‍👦", "OXA1B2C3:Studio "},
    };
    for (const auto& row : rows) EXPECT_EQ(advertisedName(id, row.name), row.advertised);
}

TEST(PhoneIdentity, belongsToTheController) {
    const auto id = deviceIDForAddress("00:AA:01:01:00:01");
    EXPECT_EQ(id, deviceIDForAddress("00:AA:01:01:00:01"));
    EXPECT_NE(deviceToken(id), deviceToken(deviceIDForAddress("00:AA:01:02:00:02")));
}

TEST(PhoneIdentity, takesTheSecondController) {
    EXPECT_EQ(chooseAdapter({"hci1", "hci0"}, ""), "hci1");
    EXPECT_EQ(chooseAdapter({"hci10", "hci2", "hci0"}, ""), "hci2");
    EXPECT_EQ(chooseAdapter({"hci3"}, ""), "hci3");
    EXPECT_EQ(chooseAdapter({"hci0", "hci1", "hci2"}, "hci2"), "hci2");
    EXPECT_EQ(chooseAdapter({"hci0", "hci1"}, "hci5"), std::nullopt);
    EXPECT_EQ(chooseAdapter({}, ""), std::nullopt);
}

TEST(HostWatch, tellsWhatHasChanged) {
    HostWatch watch;
    EXPECT_THAT(watch.review({{"A", false, false}}), IsEmpty());
    EXPECT_THAT(watch.review({{"A", true, false}}), ElementsAre("connected A"));
    EXPECT_THAT(watch.review({{"A", true, true}, {"B", true, false}}),
                ElementsAre("bonded A", "connected B"));
    EXPECT_THAT(watch.connected(), ElementsAre("A", "B"));
    EXPECT_THAT(watch.review({{"A", true, true}, {"B", true, false}}), IsEmpty());
    EXPECT_THAT(watch.review({{"A", false, true}}), ElementsAre("disconnected A", "disconnected B"));
    EXPECT_THAT(watch.review({}), ElementsAre("unbonded A"));
}

TEST(HostWatch, keepsBondsWhileTheControllerIsAway) {
    HostWatch watch;
    watch.review({{"A", true, true}, {"B", true, false}});
    EXPECT_THAT(watch.loseLinks(), ElementsAre("disconnected A", "disconnected B"));
    EXPECT_THAT(watch.bonded(), ElementsAre("A"));
    EXPECT_THAT(watch.review({{"A", false, true}}), IsEmpty());
}

TEST(NumberedMoves, leadTheWayThatTheirNumberTells) {
    double x = 0;
    double y = 0;
    std::set<std::pair<int, int>> places;
    for (std::uint32_t number = 0; number < 25000; ++number) {
        // Until the whole square has been seen, no place comes twice.
        ASSERT_EQ(places.size(), std::min(number, 10000U));
        const auto place = offsetAfter(number);
        ASSERT_EQ((Offset{static_cast<int>(x), static_cast<int>(y)}), place) << number;
        ASSERT_TRUE(place.x >= 0 && place.x < 100 && place.y >= 0 && place.y < 100) << number;
        places.emplace(place.x, place.y);
        const auto bytes = numberedMove(number);
        const auto move = std::get<DecodedPacket::MouseMove>(DecodedPacket::decode(bytes).value().value);
        ASSERT_EQ(std::abs(move.deltaX) + std::abs(move.deltaY), 1) << number;
        x += move.deltaX;
        y += move.deltaY;
        ASSERT_EQ(bytes.size(), 13U);
        ASSERT_EQ(number, bytes[9] | bytes[10] << 8U | bytes[11] << 16U);
    }
}

TEST(SteadyRun, isEvenAndExact) {
    VirtualMainQueue queue;
    std::vector<std::chrono::nanoseconds> times;
    std::optional<SteadyRun::Result> result;
    const auto start = queue.uptime();
    const SteadyRun run(
        queue, 125, 500,
        [&](std::uint32_t number) {
            EXPECT_EQ(number, times.size());
            times.push_back(queue.uptime() - start);
            return true;
        },
        [&](const SteadyRun::Result& outcome) { result = outcome; });
    queue.advance(10s);
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->isComplete);
    EXPECT_EQ(result->count, 500U);
    EXPECT_EQ(result->elapsed, 499 * 8ms);
    EXPECT_EQ(result->latest, 0ms);
    for (std::size_t i = 0; i < times.size(); ++i) ASSERT_EQ(times[i], i * 8ms);
}

TEST(SteadyRun, endsWhenNobodyWantsMore) {
    VirtualMainQueue queue;
    std::optional<SteadyRun::Result> result;
    const SteadyRun run(
        queue, 1000, 100, [](std::uint32_t number) { return number < 7; },
        [&](const SteadyRun::Result& outcome) { result = outcome; });
    queue.advance(1s);
    ASSERT_TRUE(result);
    EXPECT_FALSE(result->isComplete);
    EXPECT_EQ(result->count, 7U);
    EXPECT_EQ(queue.pendingTimers(), 0U);
}

}  // namespace
}  // namespace orbinex::test_phone
