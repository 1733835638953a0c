#include "audio/background/chunk_plan.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace orbinex {

bool ChunkPlan::read(Range chunks, Time now) {
    bool areAtHand = true;
    for (Chunk chunk = chunks.first; chunk <= chunks.last; ++chunk) {
        const auto slot = enter(chunk, chunks, now);
        if (!slot) {
            areAtHand = false;
            continue;
        }
        const Place& place = places_[*slot];
        if (place.state == State::atHand && !place.isComplete && now - place.fetchTime > incompleteLife)
            setState(*slot, State::wanted);
        areAtHand &= place.state == State::atHand;
    }
    return areAtHand;
}

void ChunkPlan::noteRead(Range chunks, Time now) {
    for (Chunk chunk = chunks.first; chunk <= chunks.last; ++chunk) {
        const auto slot = enter(chunk, chunks, now);
        if (!slot || places_[*slot].state != State::wanted) continue;
        setState(*slot, State::atHand);
        places_[*slot].isComplete = true;
    }
}

std::optional<ChunkPlan::Slot> ChunkPlan::enter(Chunk chunk, Range read, Time now) {
    if (chunk < 0 || chunk >= chunkCount_) return std::nullopt;
    lastTime_ = now;
    auto slot = slotOf(chunk);
    if (!slot) {
        const int direction = directionOfEntry(chunk);
        slot = claim(chunk, 0, now);
        if (!slot) return std::nullopt;
        places_[*slot].direction = direction;
    }
    Place& place = places_[*slot];
    use(place, now);
    place.distance = 0;
    place.isPassed = false;
    const Chunk behind = chunk - place.direction;
    if (!place.isSettled && (behind < read.first || behind > read.last)) {
        if (const auto left = slotOf(behind)) places_[*left].isPassed = true;
        place.isSettled = true;
    }
    for (int distance = 1; distance <= readAhead; ++distance)
        wantAhead(chunk + Chunk{distance} * place.direction, distance, place.direction, now);
    return slot;
}

void ChunkPlan::lose(Range chunks) {
    for (Chunk chunk = chunks.first; chunk <= chunks.last; ++chunk)
        if (const auto slot = find(chunk)) setState(*slot, State::wanted);
}

void ChunkPlan::loseAll() {
    for (Slot slot = 0; slot < slotCount; ++slot) {
        if (places_[slot].state == State::fetching) places_[slot].isLost = true;
        if (places_[slot].state == State::atHand) vacate(slot);
    }
}

std::optional<ChunkPlan::Slot> ChunkPlan::find(Chunk chunk) const {
    const auto slot = slotOf(chunk);
    return slot && places_[*slot].state == State::atHand ? slot : std::nullopt;
}

bool ChunkPlan::areAtHand(Range chunks) const {
    for (Chunk chunk = chunks.first; chunk <= chunks.last; ++chunk)
        if (!find(chunk)) return false;
    return true;
}

std::optional<ChunkPlan::Fetch> ChunkPlan::beginFetch() {
    dropOutdated();
    std::optional<Slot> next;
    forEachWanted([&](Slot slot) {
        const Place& place = places_[slot];
        if (!next || std::tie(place.distance, place.lastUse) <
                         std::tie(places_[*next].distance, places_[*next].lastUse))
            next = slot;
    });
    if (!next) return std::nullopt;
    setState(*next, State::fetching);
    return Fetch{*next, chunks_[*next], places_[*next].distance == 0};
}

void ChunkPlan::endFetch(Slot slot, bool isComplete, Time now) {
    Place& place = places_[slot];
    setState(slot, std::exchange(place.isLost, false) ? State::wanted : State::atHand);
    place.isComplete = isComplete;
    place.fetchTime = now;
}

bool ChunkPlan::hasDemand() const {
    bool isDemanded = false;
    forEachWanted([&](Slot slot) { isDemanded |= places_[slot].distance == 0; });
    return isDemanded;
}

void ChunkPlan::setState(Slot slot, State state) {
    places_[slot].state = state;
    const auto bit = std::uint64_t{1} << slot;
    wanted_ = state == State::wanted ? wanted_ | bit : wanted_ & ~bit;
}

std::optional<ChunkPlan::Slot> ChunkPlan::slotOf(Chunk chunk) const {
    if (chunk < 0) return std::nullopt;
    const Slot likely = likelySlots_[static_cast<std::size_t>(chunk) % likelySlots_.size()];
    if (chunks_[likely] == chunk) return likely;
    const auto found = std::ranges::find(chunks_, chunk);
    if (found == chunks_.end()) return std::nullopt;
    return static_cast<Slot>(found - chunks_.begin());
}

int ChunkPlan::directionOfEntry(Chunk chunk) const {
    const auto lastRead = [this](Chunk neighbour) {
        const auto slot = slotOf(neighbour);
        return slot && places_[*slot].distance == 0 ? places_[*slot].lastUse : 0;
    };
    return lastRead(chunk + 1) > lastRead(chunk - 1) ? -1 : 1;
}

void ChunkPlan::use(Place& place, Time now) {
    place.lastUse = ++uses_;
    place.lastUseTime = now;
}

void ChunkPlan::wantAhead(Chunk chunk, int distance, int direction, Time now) {
    if (chunk < 0 || chunk >= chunkCount_) return;
    auto slot = slotOf(chunk);
    if (!slot) {
        slot = claim(chunk, distance, now);
        if (!slot) return;
        places_[*slot].direction = direction;
    }
    Place& place = places_[*slot];
    place.distance = std::min(place.distance, distance);
    use(place, now);
}

std::optional<ChunkPlan::Slot> ChunkPlan::claim(Chunk chunk, int distance, Time now) {
    std::optional<Slot> best;
    int bestCost = 0;
    for (Slot slot = 0; slot < slotCount; ++slot) {
        const auto cost = costOfReplacing(places_[slot], distance, now);
        if (!cost) continue;
        if (best && std::tie(bestCost, places_[*best].lastUse) <= std::tie(*cost, places_[slot].lastUse))
            continue;
        best = slot;
        bestCost = *cost;
    }
    if (!best) return std::nullopt;
    chunks_[*best] = chunk;
    likelySlots_[static_cast<std::size_t>(chunk) % likelySlots_.size()] = static_cast<std::uint8_t>(*best);
    places_[*best] = Place{};
    setState(*best, State::wanted);
    places_[*best].distance = distance;
    return best;
}

/// What is lost when another chunk takes this place; nothing when it must not, being needed more.
std::optional<int> ChunkPlan::costOfReplacing(const Place& place, int distance, Time now) const {
    if (place.state == State::fetching) return std::nullopt;
    if (place.state == State::empty) return 1;
    // Before the empty ones, so that a file that is read in one place only takes little memory.
    if (now - place.lastUseTime > unusedLife) return 0;
    if (place.isPassed && now - place.lastUseTime > roundTime) return 2;
    if (place.distance <= distance && distance > 0) return std::nullopt;
    return 3 + readAhead - place.distance;
}

/// A file that is slow to come must not go on with what was wanted before a jump.
void ChunkPlan::dropOutdated() {
    forEachWanted([this](Slot slot) {
        if (lastTime_ - places_[slot].lastUseTime > wantLife) vacate(slot);
    });
}

void ChunkPlan::vacate(Slot slot) {
    places_[slot] = Place{};
    setState(slot, State::empty);
    chunks_[slot] = none;
}

}  // namespace orbinex
