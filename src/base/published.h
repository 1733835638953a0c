#pragma once

#include <utility>

#include "base/signal.h"

namespace orbinex {

/// A value that its owner alone changes and that others read and watch. Every assignment is announced, also
/// one of an equal value: the owner decides what counts as a change. Observers of the coming change see the
/// new value as the argument while get() still gives the old one.
template <class Value, class Owner>
class Published {
  public:
    using Observer = typename Signal<Value>::Observer;

    Published() = default;
    explicit Published(Value initial) : value_(std::move(initial)) {}

    [[nodiscard]] const Value& get() const { return value_; }
    const Value& operator*() const { return value_; }
    const Value* operator->() const { return &value_; }

    /// Called before an assignment with the value to come.
    [[nodiscard]] Subscription onWillChange(Observer observer) {
        return willChange_.subscribe(std::move(observer));
    }
    /// Called after an assignment with the value assigned.
    [[nodiscard]] Subscription onDidChange(Observer observer) {
        return didChange_.subscribe(std::move(observer));
    }

  private:
    friend Owner;
    friend struct PublishInTest;  // tests/support/publish_in_test.h

    void set(Value next) {
        willChange_.emit(next);
        value_ = std::move(next);
        // A copy, because an observer may assign again before the others have been told of this value.
        const Value announced = value_;
        didChange_.emit(announced);
    }

    Published& operator=(Value next) {
        set(std::move(next));
        return *this;
    }

    /// Changes the value where it is and announces it: no copy is made while nobody watches for coming
    /// changes.
    template <class Change>
    void edit(Change change) {
        if (willChange_.hasObservers()) {
            Value next = value_;
            change(next);
            return set(std::move(next));
        }
        change(value_);
        didChange_.emit(value_);
    }

    Value value_{};
    Signal<Value> willChange_;
    Signal<Value> didChange_;
};

}  // namespace orbinex
