#include "input/x11/spare_key_pool.h"

#include <algorithm>

namespace orbinex {

void SpareKeyPool::setKeycodes(std::span<const XKeycode> keycodes) {
    std::vector<Key> keys;
    keys.reserve(keycodes.size());
    for (const XKeycode keycode : keycodes) {
        const auto known = std::ranges::find(keys_, keycode, &Key::keycode);
        keys.push_back(known == keys_.end() ? Key{keycode, 0, std::nullopt} : *known);
    }
    keys_ = std::move(keys);
}

std::optional<SpareKeyPool::Loan> SpareKeyPool::lend(XKeysym keysym, Time now) {
    if (keys_.empty()) return std::nullopt;
    auto key = std::ranges::find(keys_, keysym, &Key::keysym);
    const bool needsMapping = key == keys_.end();
    if (needsMapping) {
        // An empty last use sorts before every time.
        key = std::ranges::min_element(keys_, {}, &Key::lastUse);
        if (key->lastUse && now - *key->lastUse < safeTime) return std::nullopt;
        key->keysym = keysym;
    }
    key->lastUse = now;
    return Loan{key->keycode, needsMapping};
}

std::optional<SpareKeyPool::Time> SpareKeyPool::nextFree() const {
    if (keys_.empty()) return std::nullopt;
    return std::ranges::min_element(keys_, {}, &Key::lastUse)->lastUse.value_or(Time::zero()) + safeTime;
}

void SpareKeyPool::endLoans(const std::function<void(XKeycode)>& giveBack) {
    for (Key& key : keys_) {
        if (key.keysym == 0) continue;
        key.keysym = 0;
        giveBack(key.keycode);
    }
}

void SpareKeyPool::forget(XKeycode keycode) {
    const auto key = std::ranges::find(keys_, keycode, &Key::keycode);
    if (key != keys_.end()) key->keysym = 0;
}

}  // namespace orbinex
