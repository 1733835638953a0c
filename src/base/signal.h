#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

namespace orbinex {

/// Keeps one observer connected for as long as it lives.
class Subscription {
  public:
    Subscription() = default;
    explicit Subscription(std::function<void()> disconnect) : disconnect_(std::move(disconnect)) {}
    Subscription(Subscription&& other) noexcept : disconnect_(std::exchange(other.disconnect_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            cancel();
            disconnect_ = std::exchange(other.disconnect_, nullptr);
        }
        return *this;
    }
    ~Subscription() { cancel(); }

    /// After this the observer is not called again, not even by a notification that is under way.
    void cancel() {
        if (auto disconnect = std::exchange(disconnect_, nullptr)) disconnect();
    }

  private:
    std::function<void()> disconnect_;
};

/// A list of observers. One thread only. An observer may subscribe, unsubscribe (itself or others) and emit
/// again from within a call, and may destroy the signal itself; observers added during an emission are first
/// called by the next one.
template <class... Arguments>
class Signal {
  public:
    using Observer = std::function<void(const Arguments&...)>;

    Signal() : state_(std::make_shared<State>()) {}
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal() = default;

    [[nodiscard]] Subscription subscribe(Observer observer) {
        const auto slot = std::make_shared<Slot>(Slot{std::move(observer), true});
        state_->slots.push_back(slot);
        return Subscription([state = std::weak_ptr<State>(state_), slot] {
            slot->connected = false;
            if (const auto owner = state.lock()) owner->sweep();
        });
    }

    [[nodiscard]] bool hasObservers() const {
        return std::ranges::any_of(state_->slots, [](const auto& slot) { return slot->connected; });
    }

    void emit(const Arguments&... arguments) const {
        const auto state = state_;
        ++state->depth;
        const std::size_t count = state->slots.size();
        for (std::size_t i = 0; i < count; ++i) {
            const auto slot = state->slots[i];
            if (slot->connected) slot->observer(arguments...);
        }
        --state->depth;
        state->sweep();
    }

  private:
    struct Slot {
        Observer observer;
        bool connected;
    };
    struct State {
        std::vector<std::shared_ptr<Slot>> slots;
        int depth = 0;

        void sweep() {
            if (depth != 0) return;
            // Kept until the list is whole again: an observer that goes may own subscriptions of this very
            // signal.
            std::vector<std::shared_ptr<Slot>> gone;
            std::ranges::copy_if(slots, std::back_inserter(gone),
                                 [](const auto& slot) { return !slot->connected; });
            std::erase_if(slots, [](const auto& slot) { return !slot->connected; });
        }
    };
    std::shared_ptr<State> state_;
};

}  // namespace orbinex
