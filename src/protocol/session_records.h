#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orbinex {

/// What the editor's transport shows.
struct SessionTelemetry {
    /// The playhead as the editor shows it, such as 01:00:00:00.
    std::string timecode;
    /// Frames a second of the timeline.
    double fps = 0;
    /// The editor's name or version label.
    std::string appVersion;
    std::string timelineName;
    /// The editor page (workspace) that is open.
    std::string pageName;
    /// A short label such as 1X, -1X, +2X or 0X.
    std::string playbackSpeed;
    bool isPlaying = false;

    friend bool operator==(const SessionTelemetry&, const SessionTelemetry&) = default;
};

/// By which way a track of the editor can be controlled.
enum class DAWControlMode { liveIPC, midiControlSurface, verifiedShortcut, unsupported };

/// The name under which a mode is stored and shown: "LIVE IPC", "MIDI SURFACE", "SHORTCUT", "UNAVAILABLE".
std::string_view rawValue(DAWControlMode mode);
/// The mode of that name; nothing for any other text.
std::optional<DAWControlMode> controlModeFromRawValue(std::string_view text);
/// The one letter that stands for a mode on the wire: "I", "M", "S", "U".
std::string_view wireCode(DAWControlMode mode);
/// The mode of that letter; `unsupported` for any other text.
DAWControlMode controlModeFromWireCode(std::string_view text);

/// One audio track of the editor, or its master bus.
struct DAWTrackState {
    /// 1-based; the master bus is 0.
    std::int64_t index = 1;
    std::int64_t totalTracks = 1;
    /// A short label such as A1; the track's identity in lists.
    std::string badge;
    std::string name;
    /// "Empty" when no clip is under the playhead.
    std::string clipName;
    /// Channel format such as STEREO.
    std::string format;
    double volumeDB = 0;
    double pan = 0;
    bool isMuted = false;
    bool isSolo = false;
    bool isArmed = false;
    bool isLocked = false;
    bool isMaster = false;
    bool voiceIsolationEnabled = false;
    /// Percent.
    std::int64_t voiceIsolationAmount = 0;
    bool dialogueLevelerEnabled = false;
    double dialogueLevelerGainDB = 0;
    DAWControlMode controlMode = DAWControlMode::unsupported;
    bool hasActiveClip = false;
    std::string clipUID;

    friend bool operator==(const DAWTrackState&, const DAWTrackState&) = default;
};

/// The colour grading of the current clip.
struct DAWColorState {
    std::string clipName;
    std::int64_t nodeCount = 1;
    /// 1-based.
    std::int64_t selectedNodeIndex = 1;
    bool isNodeEnabled = false;
    double liftR = 0;
    double liftG = 0;
    double liftB = 0;
    double gainR = 1;
    double gainG = 1;
    double gainB = 1;
    double contrast = 1;
    double saturation = 1;

    friend bool operator==(const DAWColorState&, const DAWColorState&) = default;
};

/// The whole session of the editor in front.
struct DAWSessionSnapshot {
    /// The editor's bundle identifier.
    std::string dawID;
    std::string projectName;
    std::vector<DAWTrackState> tracks;
    DAWColorState colorState;
    double masterVolumeDB = 0;
    bool masterMuted = false;
    bool midiSurfaceOnline = false;
    bool clipsLinked = false;

    /// What stands in before a real session has been read: three stereo tracks and the master bus.
    static DAWSessionSnapshot placeholder();

    friend bool operator==(const DAWSessionSnapshot&, const DAWSessionSnapshot&) = default;
};

/// What the session header record tells of a session.
struct DAWHeader {
    std::string dawID;
    std::string projectName;
    double masterVolumeDB = 0;
    bool masterMuted = false;
    bool midiSurfaceOnline = false;
    bool clipsLinked = false;
    /// Of the clip being graded.
    std::string clipName;
    std::int64_t nodeCount = 1;
    /// 1-based.
    std::int64_t selectedNodeIndex = 1;
    bool isNodeEnabled = false;

    static DAWHeader of(const DAWSessionSnapshot& session);

    friend bool operator==(const DAWHeader&, const DAWHeader&) = default;
};

}  // namespace orbinex
