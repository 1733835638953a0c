#pragma once

#include <array>
#include <bit>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace orbinex {

/// Which chunks of a file are kept in the few places there are, and which are to be fetched next. Chunks are
/// numbered from 0.
///
/// Several places of a file may be read in turn, each moving on in the direction of play: where a chunk is
/// entered from its neighbour, those on its other side are fetched ahead. Without a neighbour, play goes
/// forwards.
class ChunkPlan {
  public:
    using Chunk = std::int64_t;
    using Time = std::chrono::nanoseconds;
    using Slot = std::size_t;

    /// Enough for 16 places with one chunk ahead, and some that end in the next chunk.
    static constexpr std::size_t slotCount = 36;
    static constexpr int readAhead = 2;
    /// What was fetched incompletely is tried again after this time.
    static constexpr Time incompleteLife = std::chrono::milliseconds(500);
    /// What was not looked at for this long is not needed any more.
    static constexpr Time unusedLife = std::chrono::milliseconds(500);
    /// Reads closer together than this may belong to one look at the file, which comes back to them all.
    static constexpr Time roundTime = std::chrono::milliseconds(30);
    /// A chunk that was missed this long ago is not worth fetching.
    static constexpr Time wantLife = std::chrono::milliseconds(200);

    struct Fetch {
        Slot slot;
        Chunk chunk;
        /// Somebody waits for it; otherwise it is fetched ahead.
        bool isDemanded;
    };

    /// `chunkCount` at least 0.
    explicit ChunkPlan(Chunk chunkCount) : chunkCount_(chunkCount) { chunks_.fill(none); }

    struct Range {
        Chunk first;
        Chunk last;
    };

    /// Somebody reads these chunks. True when all are at hand; otherwise they are to be fetched, as far as
    /// they exist.
    bool read(Range chunks, Time now);
    /// Somebody has read these chunks, which were at hand anyway.
    void noteRead(Range chunks, Time now);
    /// Chunks are not at hand any more, though they were.
    void lose(Range chunks);
    /// The same for all, and for what is being fetched as soon as it comes.
    void loseAll();
    /// Where the chunk is, if it is at hand.
    [[nodiscard]] std::optional<Slot> find(Chunk chunk) const;
    [[nodiscard]] bool areAtHand(Range chunks) const;

    /// What to fetch next, and where to; it is being fetched from then on.
    std::optional<Fetch> beginFetch();
    void endFetch(Slot slot, bool isComplete, Time now);
    [[nodiscard]] bool hasDemand() const;
    [[nodiscard]] bool hasWork() const { return wanted_ != 0; }

  private:
    static constexpr Chunk none = -1;
    enum class State : std::uint8_t { empty, wanted, fetching, atHand };
    struct Place {
        State state = State::empty;
        bool isComplete = false;
        /// It was lost while it was being fetched.
        bool isLost = false;
        /// Play has moved on to the next chunk.
        bool isPassed = false;
        /// Play has left the chunk that it came from.
        bool isSettled = false;
        /// Chunks ahead of what was read; 0 once it was read itself.
        int distance = 0;
        /// Of play: 1 or -1.
        int direction = 1;
        std::uint64_t lastUse = 0;
        Time lastUseTime{0};
        Time fetchTime{0};
    };

    /// Calls `use` with each slot whose chunk is wanted.
    template <class Use>
    void forEachWanted(Use&& use) const {
        for (auto left = wanted_; left != 0; left &= left - 1) use(static_cast<Slot>(std::countr_zero(left)));
    }
    void setState(Slot slot, State state);
    [[nodiscard]] std::optional<Slot> slotOf(Chunk chunk) const;
    [[nodiscard]] int directionOfEntry(Chunk chunk) const;
    /// Play is in this chunk, in the course of a read. Nothing when no place can be had for it.
    std::optional<Slot> enter(Chunk chunk, Range read, Time now);
    void use(Place& place, Time now);
    void wantAhead(Chunk chunk, int distance, int direction, Time now);
    std::optional<Slot> claim(Chunk chunk, int distance, Time now);
    [[nodiscard]] std::optional<int> costOfReplacing(const Place& place, int distance, Time now) const;
    void dropOutdated();
    void vacate(Slot slot);

    Chunk chunkCount_;
    /// What is in each place.
    std::array<Chunk, slotCount> chunks_{};
    std::array<Place, slotCount> places_{};
    /// One bit for each slot whose chunk is wanted.
    std::uint64_t wanted_ = 0;
    /// Where a chunk may be, by the last bits of its number, which saves looking for it.
    std::array<std::uint8_t, 64> likelySlots_{};
    std::uint64_t uses_ = 0;
    Time lastTime_{0};
};

}  // namespace orbinex
