#include "audio/background/chunk_plan.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace orbinex {

bool ChunkPlan::read(Range chunks, Time now) {
    bool areAtHand = true;
    for (Chunk chunk = chunks.first; chunk <= chunks.last; ++chunk) {
        Place* const place = enter(chunk, chunks, now);
        if (place && place->state == State::atHand && !place->isComplete &&
            now - place->fetchTime > incompleteLife)
            place->state = State::wanted;
        areAtHand &= place && place->state == State::atHand;
    }
    return areAtHand;
}

void ChunkPlan::noteRead(Range chunks, Time now) {
    for (Chunk chunk = chunks.first; chunk <= chunks.last; ++chunk) {
        Place* const place = enter(chunk, chunks, now);
        if (!place || place->state != State::wanted) continue;
        place->state = State::atHand;
        place->isComplete = true;
    }
}

ChunkPlan::Place* ChunkPlan::enter(Chunk chunk, Range read, Time now) {
    if (chunk < 0 || chunk >= chunkCount_) return nullptr;
    lastTime_ = now;
    auto slot = slotOf(chunk);
    if (!slot) {
        const int direction = directionOfEntry(chunk);
        slot = claim(chunk, 0, now);
        if (!slot) return nullptr;
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
    return &place;
}

void ChunkPlan::lose(Range chunks) {
    for (Chunk chunk = chunks.first; chunk <= chunks.last; ++chunk)
        if (const auto slot = find(chunk)) places_[*slot].state = State::wanted;
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
    for (Slot slot = 0; slot < slotCount; ++slot) {
        const Place& place = places_[slot];
        if (place.state != State::wanted) continue;
        if (!next || std::tie(place.distance, place.lastUse) <
                         std::tie(places_[*next].distance, places_[*next].lastUse))
            next = slot;
    }
    if (!next) return std::nullopt;
    places_[*next].state = State::fetching;
    return Fetch{*next, chunks_[*next], places_[*next].distance == 0};
}

void ChunkPlan::endFetch(Slot slot, bool isComplete, Time now) {
    Place& place = places_[slot];
    place.state = std::exchange(place.isLost, false) ? State::wanted : State::atHand;
    place.isComplete = isComplete;
    place.fetchTime = now;
}

bool ChunkPlan::hasDemand() const {
    return std::ranges::any_of(
        places_, [](const Place& place) { return place.state == State::wanted && place.distance == 0; });
}

bool ChunkPlan::hasWork() const {
    return std::ranges::any_of(places_, [](const Place& place) { return place.state == State::wanted; });
}

std::optional<ChunkPlan::Slot> ChunkPlan::slotOf(Chunk chunk) const {
    if (chunk < 0) return std::nullopt;
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
    places_[*best] = Place{};
    places_[*best].state = State::wanted;
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
    for (Slot slot = 0; slot < slotCount; ++slot) {
        if (places_[slot].state != State::wanted || lastTime_ - places_[slot].lastUseTime <= wantLife)
            continue;
        vacate(slot);
    }
}

void ChunkPlan::vacate(Slot slot) {
    places_[slot] = Place{};
    chunks_[slot] = none;
}

}  // namespace orbinex
