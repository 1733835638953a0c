// The surface in the hands of a real workstation. Not one of the everyday tests: scripts/test-ardour runs it.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <variant>

#include <gtest/gtest.h>

#include "editor_bridge/ardour/headless_ardour.h"
#include "editor_bridge/bridge_world.h"
#include "editor_bridge/fader_law.h"
#include "editor_bridge/midi/jack_connection.h"
#include "editor_bridge/midi/system_midi_endpoints.h"
#include "support/comes_to_pass.h"
#include "support/private_jack_server.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

/// Ardour's scale, from the bottom of a fader's way at 0 to its top at 1, which is 6 dB.
double ardourLevel(double position) {
    const double doublings = (198 * std::pow(position, 1.0 / 8) - 192) / 6;
    return doublings * 20 * std::log10(2);
}
double ardourPosition(double dB) {
    const double doublings = dB / (20 * std::log10(2));
    return std::pow((6 * doublings + 192) / 198, 8);
}

/// The bridge with an iPhone and its surface on a JACK server, and Ardour there too.
class Studio {
  public:
    ~Studio() { close(); }

    /// Why it failed, or nothing. Two of Ardour's threads may speak to the JACK server at the same time while
    /// it loads a session, whatever is in that, and are then cut off. It is started again in this case.
    std::string open() {
        constexpr int attempts = 6;
        std::string failure;
        for (int attempt = 1; attempt <= attempts; ++attempt) {
            server.start();
            startBridge();
            ardour = std::make_unique<HeadlessArdour>();
            const bool isOpen = isReady();
            std::printf("Ardour, attempt %d of %d: %s\n", attempt, attempts, isOpen ? "ready" : "not ready");
            std::fflush(stdout);
            if (isOpen) return {};
            failure = ardour->log();
            close();
            server.kill();
        }
        return failure.empty() ? "it says nothing" : failure;
    }
    void startBridge() {
        world.workspace.activate(logic);
        world.start(endpoints);
        world.daemon->setBLEClientConnected(true);
    }

    template <class Condition>
    bool comesToPass(Condition condition, std::chrono::milliseconds limit = 10s) {
        return test::comesToPass(world.queue, condition, limit);
    }
    /// Where our fader comes to stand within the time for that.
    double ours(int track, double expected) {
        double level = 0;
        comesToPass([&] {
            for (const auto& state : world.session().tracks) {
                if (state.index == track) level = state.volumeDB;
            }
            return std::abs(level - expected) < tolerance;
        });
        return level;
    }
    /// Where Ardour's comes to stand.
    double theirs(int track, double expected) {
        const auto level = [&] { return ardour->fader(track).value_or(faderFloorDB); };
        comesToPass([&] { return std::abs(level() - expected) < tolerance; });
        return level();
    }
    bool comesToBeLit(const char* button, int track, bool isLit) {
        return comesToPass([&] { return ardour->told(button, track) == (isLit ? 1 : 0); });
    }
    /// How often the iPhone was told of a track.
    [[nodiscard]] std::ptrdiff_t timesTold(int track) const {
        return std::ranges::count_if(world.packets, [&](const ControlMessage& message) {
            const auto* state = std::get_if<DAWTrackState>(&message.value);
            return state && state->index == track;
        });
    }

    static constexpr double tolerance = 0.06;

    PrivateJackServer server;
    BridgeWorld world;
    SystemMIDIEndpoints endpoints{world.queue, {.systems = {JackConnection::open}, .retryDelay = 20ms}};
    std::unique_ptr<HeadlessArdour> ardour;

  private:
    void close() {
        ardour.reset();
        world.daemon.reset();
    }
    /// It has told its faders, moves one when we do, and stays.
    bool isReady() {
        const auto hasToldAll = [&] { return ardour->fader(HeadlessArdour::tracks).has_value(); };
        // A busy computer takes its time to load so large a program.
        comesToPass(
            [&] {
                ardour->follow();
                return hasToldAll() || !ardour->isAlive();
            },
            60s);
        return hasToldAll() && hearsUs() && !comesToPass([&] { return !ardour->isAlive(); }, 1500ms);
    }
    /// Its surface says nothing when it comes to life, which is some time after the session is loaded.
    bool hearsUs() {
        for (int dB = -30; dB < 0 && ardour->isAlive(); ++dB) {
            world.command(("VOL|0|" + std::to_string(dB)).c_str());
            const double there = ardourLevel(faderDBToScalar(dB));
            const auto hasMoved = [&] {
                return std::abs(ardour->fader(0).value_or(faderFloorDB) - there) < tolerance;
            };
            if (comesToPass(hasMoved, 1s)) return true;
        }
        return false;
    }
};

class Ardour : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        studio = std::make_unique<Studio>();
        failure = studio->open();
    }
    static void TearDownTestSuite() { studio.reset(); }
    void SetUp() override { ASSERT_EQ(failure, "") << "Ardour does not start"; }

    static inline std::unique_ptr<Studio> studio;
    static inline std::string failure;
};

TEST_F(Ardour, itsFadersStandWhereOursAre) {
    for (int track = 0; track <= HeadlessArdour::tracks; ++track) {
        for (const double dB : {-20.0, 12.0, -36.0, 0.0, -9.5}) {
            SCOPED_TRACE(testing::Message() << "track " << track << " at " << dB);
            const double there = ardourLevel(faderDBToScalar(dB));
            const std::string command = "VOL|" + std::to_string(track) + "|" + std::to_string(dB);
            studio->world.forget();
            studio->world.command(command.c_str());
            ASSERT_NEAR(studio->theirs(track, there), there, Studio::tolerance);
            // What the iPhone is told at once, and when Ardour has moved the surface's motor fader there.
            EXPECT_TRUE(studio->comesToPass([&] { return studio->timesTold(track) >= 2; }));
            EXPECT_NEAR(studio->ours(track, dB), dB, Studio::tolerance) << "it says what we say";
        }
    }
}

TEST_F(Ardour, oursStandWhereItsFadersAre) {
    for (int track = 0; track <= HeadlessArdour::tracks; ++track) {
        for (const double dB : {-3.0, 6.0, -30.0, 0.0}) {
            SCOPED_TRACE(testing::Message() << "track " << track << " at " << dB);
            studio->world.forget();
            studio->ardour->moveFader(track, dB);
            const double here = faderScalarToDB(std::min(ardourPosition(dB), 1.0));
            ASSERT_NEAR(studio->ours(track, here), here, 2 * Studio::tolerance);
            EXPECT_GE(studio->timesTold(track), 1) << "the iPhone knows";
        }
    }
}

TEST_F(Ardour, ourButtonsPressItsButtons) {
    for (const auto& [command, button] : {std::pair("MUTE|2|1", "/strip/mute"),
                                          {"SOLO|2|1", "/strip/solo"},
                                          {"ARM|2|1", "/strip/recenable"}}) {
        for (const bool isLit : {true, false}) {
            studio->world.command(command);
            ASSERT_TRUE(studio->comesToBeLit(button, 2, isLit)) << command << " " << isLit;
            EXPECT_EQ(studio->ardour->told(button, 1), 0) << command;
        }
    }
}

TEST_F(Ardour, turnsNothingForWhatItHasNoControlFor) {
    const double pan = studio->ardour->told("/strip/pan_stereo_position", 1).value();
    for (const auto* command : {"PAN|1|100", "VISO|1|1|65", "DLEV|1|1|12", "VOL|1|-12"})
        studio->world.command(command);
    const double there = ardourLevel(faderDBToScalar(-12));
    ASSERT_NEAR(studio->theirs(1, there), there, Studio::tolerance) << "it has heard all of them";
    EXPECT_EQ(studio->ardour->told("/strip/pan_stereo_position", 1), pan);
}

}  // namespace
}  // namespace orbinex::test
