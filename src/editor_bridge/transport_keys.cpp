#include "editor_bridge/transport_keys.h"

#include <string_view>

#include "editor_bridge/timecode.h"
#include "protocol/playback_speed.h"

namespace orbinex {

namespace {

namespace Key {
constexpr std::uint16_t l = 37;
constexpr std::uint16_t j = 38;
constexpr std::uint16_t k = 40;
constexpr std::uint16_t space = 49;
constexpr std::uint16_t left = 123;
constexpr std::uint16_t right = 124;
}  // namespace Key

SessionTelemetry atSpeed(const SessionTelemetry& now, std::string_view speed) {
    SessionTelemetry result = now;
    result.playbackSpeed = speed;
    result.isPlaying = speed != PlaybackSpeed::stopped;
    return result;
}

TransportKeyEffect stepped(const SessionTelemetry& now, int step) {
    TransportKeyEffect effect{atSpeed(now, PlaybackSpeed::stopped), step};
    if (const auto at = timecodeToFrames(now.timecode, now.fps)) {
        if (const auto frame = steppedFrame(at->frames, step))
            effect.telemetry.timecode = framesToTimecode(*frame, at->isDropFrame, now.fps);
    }
    return effect;
}

}  // namespace

std::optional<TransportKeyEffect> transportKeyEffect(std::uint16_t keycode, const SessionTelemetry& now) {
    using namespace PlaybackSpeed;
    switch (keycode) {
        case Key::l:
            return TransportKeyEffect{atSpeed(now, now.playbackSpeed == forward ? fastForward : forward)};
        case Key::j: return TransportKeyEffect{atSpeed(now, backward)};
        case Key::k: return TransportKeyEffect{atSpeed(now, stopped)};
        case Key::space: return TransportKeyEffect{atSpeed(now, now.isPlaying ? stopped : forward)};
        case Key::left: return stepped(now, -1);
        case Key::right: return stepped(now, 1);
        default: return std::nullopt;
    }
}

}  // namespace orbinex
