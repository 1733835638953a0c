#include "audio/background/chunk_plan.h"

#include <gtest/gtest.h>

#include "audio/background/meter_tick.h"

namespace orbinex {

namespace {

using namespace std::chrono_literals;
using test::readAsMeterTick;

constexpr std::int64_t chunkFrames = 4096;

/// Meter ticks of one file at 48 kHz, whose worker keeps up: all that is wanted is fetched between the ticks,
/// and what is missed is fetched at once.
class Play {
  public:
    explicit Play(std::int64_t chunks = 100'000) : plan_(chunks) {}

    void tick(std::int64_t playhead, std::int64_t samplesPerFrame) {
        readAsMeterTick(playhead, samplesPerFrame, [&](std::int64_t start, std::size_t frames) {
            read({start / chunkFrames, (start + static_cast<std::int64_t>(frames) - 1) / chunkFrames});
        });
        while (fetch(false)) {
        }
        time_ += 66ms;
    }
    /// Ticks at `speed` times the media's pace; returns how many chunks were missed.
    int play(int ticks, std::int64_t samplesPerFrame, double speed) {
        const int before = misses_;
        for (int i = 0; i < ticks; ++i) {
            tick(playhead_, samplesPerFrame);
            playhead_ += static_cast<std::int64_t>(3168 * speed);
        }
        return misses_ - before;
    }
    void jump(std::int64_t playhead) { playhead_ = playhead; }
    int fetches() const { return fetches_; }

  private:
    void read(ChunkPlan::Range chunks) {
        if (plan_.read(chunks, time_)) return;
        ++misses_;
        while (plan_.hasDemand()) ASSERT_TRUE(fetch(true));
        EXPECT_TRUE(plan_.areAtHand(chunks)) << "what was fetched for a reader is gone before it is read";
    }
    bool fetch(bool isDemanded) {
        const auto next = plan_.beginFetch();
        if (!next) return false;
        EXPECT_EQ(next->isDemanded, isDemanded);
        plan_.endFetch(next->slot, true, time_);
        EXPECT_EQ(plan_.find(next->chunk), next->slot);
        ++fetches_;
        return true;
    }

    ChunkPlan plan_;
    std::chrono::nanoseconds time_ = 1h;
    std::int64_t playhead_ = 0;
    int misses_ = 0;
    int fetches_ = 0;
};

TEST(ChunkPlan, hasEveryChunkAheadOfPlay) {
    const struct {
        const char* what;
        std::int64_t samplesPerFrame;
        double speed;
        /// Misses in the first tick after a jump, and once the direction has changed.
        int mostAtStart;
    } rows[] = {
        {"24 frames a second", 2000, 1, 9},
        {"24 backwards", 2000, -1, 10},
        {"24 twice as fast", 2000, 2, 9},
        {"24 twice as fast backwards", 2000, -2, 10},
        {"60 frames a second", 800, 1, 9},
        {"10 frames a second", 4800, 1, 18},
        {"10 backwards", 4800, -1, 20},
        {"1 frame a second", 48'000, 1, 18},
        {"1 frame a second backwards", 48'000, -1, 36},
    };
    for (const auto& row : rows) {
        Play play;
        play.jump(20'000'000);
        EXPECT_LE(play.play(3, row.samplesPerFrame, row.speed), row.mostAtStart) << row.what;
        EXPECT_EQ(play.play(500, row.samplesPerFrame, row.speed), 0) << row.what;
    }
}

TEST(ChunkPlan, fetchesNothingWhileThePlayheadStands) {
    Play play;
    play.jump(1'000'000);
    play.play(1, 48'000, 0);
    const int fetches = play.fetches();
    EXPECT_EQ(play.play(100, 48'000, 0), 0);
    EXPECT_EQ(play.fetches(), fetches);
}

TEST(ChunkPlan, fetchesEachChunkOnceInSteadyPlay) {
    Play play;
    play.play(10, 2000, 1);
    const int before = play.fetches();
    play.play(1000, 2000, 1);
    EXPECT_NEAR(play.fetches() - before, 773, 2);
}

TEST(ChunkPlan, turnsRoundWithOneMiss) {
    Play play;
    play.jump(20'000'000);
    play.play(100, 2000, 1);
    EXPECT_LE(play.play(100, 2000, -1), 1);
    EXPECT_LE(play.play(200, 2000, 1), 1);
}

TEST(ChunkPlan, fetchesNothingOutsideTheFile) {
    ChunkPlan plan(2);
    EXPECT_FALSE(plan.read({-1, -1}, 1h));
    EXPECT_FALSE(plan.read({2, 2}, 1h));
    EXPECT_FALSE(plan.hasWork());
    EXPECT_FALSE(plan.read({1, 1}, 1h));
    ASSERT_TRUE(plan.beginFetch());
    EXPECT_FALSE(plan.beginFetch());
}

TEST(ChunkPlan, fetchesForReadersFirstAndForgetsWhatTheyJumpedAwayFrom) {
    ChunkPlan plan(1000);
    plan.read({10, 10}, 1h);
    plan.read({500, 500}, 1h + 10ms);
    EXPECT_EQ(plan.beginFetch()->chunk, 10);
    EXPECT_EQ(plan.beginFetch()->chunk, 500);
    EXPECT_EQ(plan.beginFetch()->chunk, 11);
    plan.read({800, 800}, 1h + 300ms);
    EXPECT_EQ(plan.beginFetch()->chunk, 800);
    EXPECT_EQ(plan.beginFetch()->chunk, 801);
    EXPECT_EQ(plan.beginFetch()->chunk, 802);
    EXPECT_FALSE(plan.beginFetch()) << "12, 501 and 502 are not wanted any more";
}

TEST(ChunkPlan, triesAgainForWhatCameIncompletely) {
    ChunkPlan plan(10);
    plan.read({9, 9}, 1h);
    plan.endFetch(plan.beginFetch()->slot, false, 1h);
    EXPECT_TRUE(plan.read({9, 9}, 1h + 500ms));
    EXPECT_FALSE(plan.hasWork());
    EXPECT_FALSE(plan.read({9, 9}, 1h + 501ms));
    ASSERT_TRUE(plan.hasDemand());
    plan.endFetch(plan.beginFetch()->slot, true, 1h + 501ms);
    EXPECT_TRUE(plan.read({9, 9}, 2h));
}

TEST(ChunkPlan, fetchesAheadOfWhatWasAtHandAnyway) {
    ChunkPlan plan(10);
    plan.noteRead({4, 4}, 1h);
    EXPECT_TRUE(plan.find(4));
    for (const std::int64_t chunk : {5, 6}) {
        const auto fetch = plan.beginFetch();
        ASSERT_TRUE(fetch);
        EXPECT_EQ(fetch->chunk, chunk);
        EXPECT_FALSE(fetch->isDemanded);
    }
    EXPECT_FALSE(plan.hasWork());
    EXPECT_TRUE(plan.read({4, 4}, 1h + 600ms)) << "nothing of it was missing";
    plan.lose({4, 4});
    EXPECT_FALSE(plan.find(4));
    EXPECT_TRUE(plan.hasDemand());
}

TEST(ChunkPlan, leavesAloneWhatIsBeingFetched) {
    ChunkPlan plan(100'000);
    plan.read({1, 1}, 1h);
    const auto fetch = plan.beginFetch();
    ASSERT_TRUE(fetch);
    for (int i = 0; i < 1000; ++i) {
        plan.read({100 + 10 * i, 100 + 10 * i}, 1h + i * 1s);
        const auto other = plan.beginFetch();
        ASSERT_TRUE(other);
        ASSERT_NE(other->slot, fetch->slot);
        plan.endFetch(other->slot, true, 1h + i * 1s);
    }
    plan.endFetch(fetch->slot, true, 2h);
    EXPECT_EQ(plan.find(1), fetch->slot);
}

TEST(ChunkPlan, fetchesOnceMoreWhatWasLostMeanwhile) {
    ChunkPlan plan(2);
    plan.read({1, 1}, 1h);
    const auto fetch = plan.beginFetch();
    plan.loseAll();
    plan.endFetch(fetch->slot, true, 1h);
    EXPECT_FALSE(plan.find(1));
    ASSERT_TRUE(plan.hasDemand());
    plan.endFetch(plan.beginFetch()->slot, true, 1h);
    EXPECT_TRUE(plan.find(1));
}

}  // namespace

}  // namespace orbinex
