#pragma once

#include <utility>

#include "base/published.h"

namespace orbinex {

/// Puts published state where a test needs it, in its owner's place.
struct PublishInTest {
    template <class Value, class Owner>
    static void set(Published<Value, Owner>& state, Value next) {
        state.set(std::move(next));
    }
    template <class Value, class Owner, class Change>
    static void edit(Published<Value, Owner>& state, Change change) {
        state.edit(std::move(change));
    }
};

}  // namespace orbinex
