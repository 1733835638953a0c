#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "editor_bridge/midi_endpoints.h"
#include "protocol/daw_command.h"

namespace orbinex {

/// The language of the MIDI surface: faders and buttons are numbered as on a Mackie Control (eight strips and
/// a master fader), pan and the two voice effects are plain controllers.
///
/// | what | bytes |
/// |---|---|
/// | fader of strip s, 1 to 8 | E0 + s - 1, position as 14 bits, low seven first |
/// | master fader | E8, position |
/// | record, solo, mute button of strip s | 90, 0 / 8 / 16 + s - 1, 7F; then 80, the same, 00 |
/// | pan of strip s | B0 + s - 1, 0A, 0 (left) to 7F (right) |
/// | voice isolation | B0, 1C, 0 to 7F (100 percent) |
/// | dialogue leveler | B0, 1D, 0 (-12 dB) to 7F (12 dB) |
///
/// Tracks behind the eighth are all on strip 8. What has no such place, such as a button of the master, is no
/// message.

/// What one command sends: nothing, one message, or a button's press and release.
class MIDISequence {
  public:
    MIDISequence() = default;
    explicit MIDISequence(const MIDIMessage& message) : messages_{message}, size_(1) {}
    MIDISequence(const MIDIMessage& first, const MIDIMessage& second) : messages_{first, second}, size_(2) {}

    [[nodiscard]] const MIDIMessage* begin() const { return messages_.data(); }
    [[nodiscard]] const MIDIMessage* end() const { return messages_.data() + size_; }

  private:
    std::array<MIDIMessage, 2> messages_{};
    std::size_t size_ = 0;
};

/// What a command means on the surface, its faders excepted. Values beyond a controller's range stand at its
/// end; what is not finite is no message.
MIDISequence surfaceControl(const DAWCommand& command);

/// A fader's place among the channels: 0 to 7 for the strips, `masterFaderChannel` for track 0. Negative
/// tracks are on the first strip.
int faderChannel(std::int64_t trackIndex);
inline constexpr int masterFaderChannel = 8;

/// A fader's position. The channel is limited to 0 to 8, the level to a fader's range; what is not finite is
/// its lower end.
MIDIMessage faderMessage(int channel, double dB);

/// What a workstation says of one of its faders.
struct FaderFeedback {
    /// 0 for the master.
    std::int64_t trackIndex = 0;
    /// Tenths, within a fader's range.
    double dB = 0;

    friend bool operator==(const FaderFeedback&, const FaderFeedback&) = default;
};

/// Nothing for every message but a fader's position, and for bytes that are no whole message.
std::optional<FaderFeedback> faderFeedback(const MIDIMessage& message);

}  // namespace orbinex
