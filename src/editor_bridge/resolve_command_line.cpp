#include "editor_bridge/resolve_command_line.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <variant>

#include "base/numbers.h"
#include "base/text.h"
#include "editor_bridge/fader_law.h"

namespace orbinex {

namespace {

using Line = std::optional<std::string>;

Line joined(std::initializer_list<std::string_view> fields) {
    std::string line;
    for (const auto& field : fields) {
        if (!line.empty()) line += '|';
        line += field;
    }
    return line;
}

std::string number(std::int64_t value) {
    return std::to_string(value);
}

/// As it is, or, if it is not finite, as it is within its range.
std::string decimal(double value, double (*clamped)(double), int decimals) {
    return formatFixed(std::isfinite(value) ? value : clamped(value), decimals);
}

std::string_view flag(bool value) {
    return value ? "1" : "0";
}

/// The wheels of the phone as the parameters of the ASC colour decision list: slope is gain times contrast,
/// offset is lift, and power falls as contrast rises.
Line colourLine(const DAWCommand::SetColorCDL& colour) {
    std::string line = "CDL|" + number(std::max<std::int64_t>(colour.nodeIndex, 1));
    const auto add = [&](double value, int decimals) { line += '|' + formatFixed(value, decimals); };
    for (const double gain : {colour.gainR, colour.gainG, colour.gainB}) {
        const double slope = gain * colour.contrast;
        add(slope < 0.1 ? 0.1 : slope, 4);
    }
    for (const double lift : {colour.liftR, colour.liftG, colour.liftB}) add(lift, 4);
    add(std::max(2 - colour.contrast, 0.2), 4);
    add(colour.saturation, 3);
    return line;
}

struct LineWriter {
    Line operator()(const DAWCommand::SetTrackVolume& c) const {
        if (c.trackIndex == 0) return std::nullopt;
        return joined({"VOL", number(c.trackIndex), decimal(c.volumeDB, clampedFaderDB, 2)});
    }
    Line operator()(const DAWCommand::SetTrackPan& c) const {
        if (c.trackIndex < 1) return std::nullopt;
        return joined({"PAN", number(c.trackIndex), decimal(c.pan, clampedPan, 1)});
    }
    Line operator()(const DAWCommand::SetTrackMute& c) const {
        if (c.trackIndex < 1) return std::nullopt;
        return joined({"MUTE", number(c.trackIndex), flag(!c.isMuted)});
    }
    Line operator()(const DAWCommand::SetTrackSolo&) const { return std::nullopt; }
    Line operator()(const DAWCommand::SetTrackArmOrLock& c) const {
        if (c.trackIndex < 1) return std::nullopt;
        return joined({"LOCK", number(c.trackIndex), flag(c.isArmed)});
    }
    Line operator()(const DAWCommand::SetVoiceIsolation& c) const {
        return joined({"VISO", number(c.trackIndex), flag(c.enabled), number(c.amount)});
    }
    Line operator()(const DAWCommand::SetDialogueLeveler& c) const {
        return joined(
            {"DLEV", number(c.trackIndex), flag(c.enabled), decimal(c.gainDB, clampedLevelerDB, 1)});
    }
    Line operator()(const DAWCommand::SetClipsLinked& c) const { return joined({"LINK", flag(c.linked)}); }
    Line operator()(const DAWCommand::OpenPage& c) const { return joined({"PAGE", lowercased(c.pageName)}); }
    Line operator()(const DAWCommand::SetTimecode& c) const { return joined({"TC", c.timecode}); }
    Line operator()(const DAWCommand::SetColorCDL& c) const { return colourLine(c); }
    Line operator()(const DAWCommand::SetColorNodeEnabled& c) const {
        return joined({"NEN", number(std::max<std::int64_t>(c.nodeIndex, 1)), flag(c.enabled)});
    }
    Line operator()(const DAWCommand::SelectTrack&) const { return std::nullopt; }
    Line operator()(const DAWCommand::RequestSnapshot&) const { return "REFRESH"; }
};

}  // namespace

std::optional<std::string> resolveCommandLine(const DAWCommand& command) {
    return std::visit(LineWriter(), command.value);
}

}  // namespace orbinex
