#include "editor_bridge/bridge_lines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>

#include "base/numbers.h"
#include "base/text.h"
#include "editor_bridge/fader_law.h"

namespace orbinex {

namespace {

constexpr std::string_view noClip = "Empty";

/// The fields of a line, the first being its kind.
class Fields {
  public:
    explicit Fields(std::string_view line) {
        for (;;) {
            const auto end = std::min(line.find('|'), line.size());
            if (count_ < fields_.size()) fields_[count_++] = line.substr(0, end);
            if (end == line.size()) return;
            line.remove_prefix(end + 1);
        }
    }

    [[nodiscard]] std::size_t count() const { return count_; }
    /// Empty beyond the last one.
    [[nodiscard]] std::string_view text(std::size_t field) const { return fields_[field]; }
    [[nodiscard]] std::string_view text(std::size_t field, std::string_view defaultText) const {
        return fields_[field].empty() ? defaultText : fields_[field];
    }
    [[nodiscard]] std::optional<std::int64_t> integer(std::size_t field) const {
        return parseInteger(fields_[field]);
    }
    /// True for whole numbers other than 0.
    [[nodiscard]] bool flag(std::size_t field) const { return integer(field).value_or(0) != 0; }
    /// What is not finite cannot be told on or compared: it counts as unreadable.
    [[nodiscard]] double decimal(std::size_t field, double defaultValue) const {
        const auto value = parseDecimal(fields_[field]);
        return value && std::isfinite(*value) ? *value : defaultValue;
    }

  private:
    /// No kind of line has more.
    std::array<std::string_view, 19> fields_{};
    std::size_t count_ = 0;
};

/// A drop-frame rate carries " DF" behind the number.
double frameRate(std::string_view text) {
    constexpr std::string_view mark = " DF";
    std::string number;
    for (auto at = text.find(mark); at != std::string_view::npos; at = text.find(mark)) {
        number += text.substr(0, at);
        text.remove_prefix(at + mark.size());
    }
    number += text;
    const auto rate = parseDecimal(trimWhitespace(number));
    return rate && std::isfinite(*rate) ? *rate : 24.0;
}

void readClipPlacement(const Fields& fields, TrackLine& track) {
    track.hasActiveClip = fields.flag(14);
    track.clipUID = fields.text(15);
    track.clipStartFrame = fields.integer(16).value_or(0);
    track.sourceStartFrame = fields.integer(17).value_or(0);
    track.filePath = trimWhitespace(fields.text(18));
}

}  // namespace

std::optional<TimecodeLine> parseTimecodeLine(std::string_view line) {
    const Fields fields(line);
    TimecodeLine result;
    result.timecode = trimWhitespace(fields.text(1));
    if (fields.count() < 6 || result.timecode.empty()) return std::nullopt;
    result.fps = frameRate(fields.text(2));
    result.appVersion = fields.text(3, "RESOLVE");
    result.timelineName = fields.text(4, "Timeline");
    result.pageName = fields.text(5, "EDIT");
    if (const auto linked = fields.integer(6)) result.clipsLinked = *linked != 0;
    if (const auto frame = fields.integer(7); frame && *frame >= 1) result.playheadFrame = *frame;
    return result;
}

std::optional<HeaderLine> parseHeaderLine(std::string_view line) {
    const Fields fields(line);
    if (fields.count() < 5) return std::nullopt;
    return HeaderLine{
        .trackCount = std::max<std::int64_t>(fields.integer(1).value_or(1), 1),
        .clipsLinked = fields.integer(2).value_or(1) != 0,
        .clipName = fields.text(3, "Timeline Clip"),
        .nodeCount = std::max<std::int64_t>(fields.integer(4).value_or(1), 1),
    };
}

std::optional<TrackLine> parseTrackLine(std::string_view line) {
    const Fields fields(line);
    const auto index = fields.integer(1);
    if (fields.count() < 14 || !index || *index < 1) return std::nullopt;
    const auto volume = parseDecimal(fields.text(8));
    TrackLine track{
        .index = *index,
        .totalTracks = std::max(fields.integer(2).value_or(*index), *index),
        .name = fields.text(3),
        .clipName = fields.text(4, noClip),
        .format = fields.text(5, "STEREO"),
        .isMuted = fields.integer(6) == 0,
        .isLocked = fields.flag(7),
        .volumeDB = clampedFaderDB(volume.value_or(0)),
        .pan = fields.decimal(9, 0),
        .voiceIsolationEnabled = fields.flag(10),
        .voiceIsolationAmount = std::clamp<std::int64_t>(fields.integer(11).value_or(65), 0, 100),
        .dialogueLevelerEnabled = fields.flag(12),
        .dialogueLevelerGainDB = fields.decimal(13, 0),
    };
    if (fields.count() == 14) {
        track.hasActiveClip = track.clipName != noClip;
    } else {
        readClipPlacement(fields, track);
    }
    return track;
}

}  // namespace orbinex
