#include "editor_bridge/midi_surface.h"

#include <algorithm>
#include <cmath>
#include <variant>

#include "editor_bridge/fader_law.h"

namespace orbinex {

namespace {

constexpr std::uint8_t noteOff = 0x80;
constexpr std::uint8_t noteOn = 0x90;
constexpr std::uint8_t controlChange = 0xB0;
constexpr std::uint8_t pitchBend = 0xE0;
constexpr std::uint8_t kindMask = 0xF0;
constexpr std::uint8_t channelMask = 0x0F;
constexpr std::uint8_t dataMask = 0x7F;

constexpr std::uint8_t firstRecordButton = 0;
constexpr std::uint8_t firstSoloButton = 8;
constexpr std::uint8_t firstMuteButton = 16;
constexpr std::uint8_t panController = 10;
constexpr std::uint8_t voiceIsolationController = 28;
constexpr std::uint8_t dialogueLevelerController = 29;

constexpr std::int64_t strips = 8;
constexpr double highestController = 127;
constexpr double highestFader = 16383;

/// From 0; tracks before the first are on it.
std::uint8_t stripOf(std::int64_t trackIndex) {
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(trackIndex, 1, strips) - 1);
}

std::uint8_t plus(std::uint8_t base, int offset) {
    return static_cast<std::uint8_t>(base + offset);
}

MIDISequence controller(std::uint8_t channel, std::uint8_t number, double value) {
    const auto limited = static_cast<std::uint8_t>(std::clamp(value, 0.0, highestController));
    return MIDISequence({plus(controlChange, channel), number, limited});
}

MIDISequence button(std::uint8_t first, std::int64_t trackIndex) {
    if (trackIndex < 1) return {};
    const std::uint8_t note = plus(first, stripOf(trackIndex));
    return {{noteOn, note, dataMask}, {noteOff, note, 0}};
}

struct Control {
    MIDISequence operator()(const DAWCommand::SetTrackPan& c) const {
        if (c.trackIndex < 1 || !std::isfinite(c.pan)) return {};
        return controller(stripOf(c.trackIndex), panController, (c.pan + 100) / 200 * highestController);
    }
    MIDISequence operator()(const DAWCommand::SetTrackMute& c) const {
        return button(firstMuteButton, c.trackIndex);
    }
    MIDISequence operator()(const DAWCommand::SetTrackSolo& c) const {
        return button(firstSoloButton, c.trackIndex);
    }
    MIDISequence operator()(const DAWCommand::SetTrackArmOrLock& c) const {
        return button(firstRecordButton, c.trackIndex);
    }
    MIDISequence operator()(const DAWCommand::SetVoiceIsolation& c) const {
        const double portion = static_cast<double>(c.amount) / 100;
        return controller(0, voiceIsolationController, portion * highestController);
    }
    MIDISequence operator()(const DAWCommand::SetDialogueLeveler& c) const {
        if (!std::isfinite(c.gainDB)) return {};
        const double portion = std::clamp((c.gainDB + 12) / 24, 0.0, 1.0);
        return controller(0, dialogueLevelerController, portion * highestController);
    }
    template <class Other>
    MIDISequence operator()(const Other& /*hasNoPlaceOnTheSurface*/) const {
        return {};
    }
};

}  // namespace

MIDISequence surfaceControl(const DAWCommand& command) {
    return std::visit(Control{}, command.value);
}

int faderChannel(std::int64_t trackIndex) {
    return trackIndex == 0 ? masterFaderChannel : stripOf(trackIndex);
}

MIDIMessage faderMessage(int channel, double dB) {
    const double position = faderDBToScalar(clampedFaderDB(dB));
    const auto value = static_cast<unsigned>(std::clamp(position * highestFader, 0.0, highestFader));
    return {plus(pitchBend, std::clamp(channel, 0, masterFaderChannel)),
            static_cast<std::uint8_t>(value & dataMask), static_cast<std::uint8_t>(value >> 7U)};
}

std::optional<FaderFeedback> faderFeedback(const MIDIMessage& message) {
    const auto [status, low, high] = message;
    const int channel = status & channelMask;
    if ((status & kindMask) != pitchBend || channel > masterFaderChannel) return std::nullopt;
    if (low > dataMask || high > dataMask) return std::nullopt;
    const unsigned value = low | static_cast<unsigned>(high) << 7U;
    return FaderFeedback{.trackIndex = channel == masterFaderChannel ? 0 : channel + 1,
                         .dB = faderScalarToDB(value / highestFader)};
}

}  // namespace orbinex
