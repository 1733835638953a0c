#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "input/event_poster.h"

namespace orbinex {

/// A desktop that only writes down what is posted. Its pointer goes where motion sends it.
class RecordingEventPoster final : public EventPoster {
  public:
    struct UnicodeEvent {
        std::u16string units;
        bool isDown = false;
        friend bool operator==(const UnicodeEvent&, const UnicodeEvent&) = default;
    };
    using Event = std::variant<MouseEvent, ScrollEvent, KeyEvent, UnicodeEvent>;

    /// Everything posted, in order. Clear it at will.
    std::vector<Event> events;
    Point pointer{100, 100};
    std::vector<Rect> displays{{0, 0, 1280, 800}};
    Rect main{0, 0, 1280, 800};
    /// While set, no event can be created.
    bool failsToCreateEvents = false;

    [[nodiscard]] Point pointerLocation() override { return pointer; }
    [[nodiscard]] std::span<const Rect> activeDisplays() override { return displays; }
    [[nodiscard]] Rect mainDisplay() override { return main; }
    bool postMouse(const MouseEvent& event) override;
    bool postScroll(const ScrollEvent& event) override;
    bool postKey(const KeyEvent& event) override;
    bool postUnicode(std::u16string_view units, bool isDown) override;
    void dropWaiting() override {}

    /// All text that was typed as Unicode, one press after the other.
    [[nodiscard]] std::u16string typedUnicode() const;

  private:
    template <class Content>
    bool record(Content content) {
        if (failsToCreateEvents) return false;
        events.emplace_back(std::in_place_type<Content>, std::move(content));
        return true;
    }
};

}  // namespace orbinex
