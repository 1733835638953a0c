#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orbinex {

// What the bridge script prints, one record a line, fields separated by "|". The parsers allocate nothing;
// the texts in their results are parts of the line.

/// "OXTC|timecode|frame rate|version label|timeline|page[|clips linked[|playhead frame]]"
struct TimecodeLine {
    std::string_view timecode = {};
    /// Frames a second; finite.
    double fps = 24;
    std::string_view appVersion = {};
    std::string_view timelineName = {};
    /// As the editor spells it.
    std::string_view pageName = {};
    std::optional<bool> clipsLinked;
    /// At least 1.
    std::optional<std::int64_t> playheadFrame;

    friend bool operator==(const TimecodeLine&, const TimecodeLine&) = default;
};

/// "OXHDR|audio tracks|clips linked|clip being graded|nodes"
struct HeaderLine {
    /// At least 1, like the node count.
    std::int64_t trackCount = 1;
    bool clipsLinked = true;
    std::string_view clipName = {};
    std::int64_t nodeCount = 1;

    friend bool operator==(const HeaderLine&, const HeaderLine&) = default;
};

/// "OXTRK|index|tracks|name|clip|format|enabled|locked|volume|pan|isolation|amount|leveler|gain[|active|clip
/// id|clip start|source start|path]"
struct TrackLine {
    /// At least 1.
    std::int64_t index = 1;
    /// At least the index.
    std::int64_t totalTracks = 1;
    /// Empty when the editor gives none.
    std::string_view name = {};
    std::string_view clipName = {};
    std::string_view format = {};
    bool isMuted = false;
    bool isLocked = false;
    /// -96 to 12 dB.
    double volumeDB = 0;
    double pan = 0;
    bool voiceIsolationEnabled = false;
    /// 0 to 100 percent.
    std::int64_t voiceIsolationAmount = 65;
    bool dialogueLevelerEnabled = false;
    double dialogueLevelerGainDB = 0;
    bool hasActiveClip = false;
    std::string_view clipUID = {};
    /// Timeline frame.
    std::int64_t clipStartFrame = 0;
    /// Frame of the clip's media.
    std::int64_t sourceStartFrame = 0;
    std::string_view filePath = {};

    friend bool operator==(const TrackLine&, const TrackLine&) = default;
};

/// Each reads a line of its own kind; nothing when it has too few fields (6, 5, 14) or lacks what everything
/// depends on (the timecode, a track index of at least 1). Other fields that do not parse, and numbers that
/// are not finite, take their defaults.
std::optional<TimecodeLine> parseTimecodeLine(std::string_view line);
std::optional<HeaderLine> parseHeaderLine(std::string_view line);
std::optional<TrackLine> parseTrackLine(std::string_view line);

}  // namespace orbinex
