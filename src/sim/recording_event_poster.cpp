#include "sim/recording_event_poster.h"

namespace orbinex {

bool RecordingEventPoster::postMouse(const MouseEvent& event) {
    if (!record(event)) return false;
    pointer = event.location;
    return true;
}

bool RecordingEventPoster::postScroll(const ScrollEvent& event) {
    return record(event);
}

bool RecordingEventPoster::postKey(const KeyEvent& event) {
    return record(event);
}

bool RecordingEventPoster::postUnicode(std::u16string_view units, bool isDown) {
    return record(UnicodeEvent{std::u16string(units), isDown});
}

std::u16string RecordingEventPoster::typedUnicode() const {
    std::u16string text;
    for (const Event& event : events) {
        if (const auto* typed = std::get_if<UnicodeEvent>(&event); typed && typed->isDown)
            text += typed->units;
    }
    return text;
}

}  // namespace orbinex
