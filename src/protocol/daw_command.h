#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace orbinex {

/// What the iPhone asks the editor to do. On the wire it is text: a keyword and its fields, separated by "|".
/// Track and node indices are 1-based, but carried as they come, 0 and negative ones included.
struct DAWCommand {
    /// VOL|track|dB
    struct SetTrackVolume {
        std::int64_t trackIndex = 1;
        double volumeDB = 0;
        friend bool operator==(const SetTrackVolume&, const SetTrackVolume&) = default;
    };
    /// PAN|track|pan
    struct SetTrackPan {
        std::int64_t trackIndex = 1;
        double pan = 0;
        friend bool operator==(const SetTrackPan&, const SetTrackPan&) = default;
    };
    /// MUTE|track|flag
    struct SetTrackMute {
        std::int64_t trackIndex = 1;
        bool isMuted = false;
        friend bool operator==(const SetTrackMute&, const SetTrackMute&) = default;
    };
    /// SOLO|track|flag
    struct SetTrackSolo {
        std::int64_t trackIndex = 1;
        bool isSolo = false;
        friend bool operator==(const SetTrackSolo&, const SetTrackSolo&) = default;
    };
    /// ARM|track|flag
    struct SetTrackArmOrLock {
        std::int64_t trackIndex = 1;
        bool isArmed = false;
        friend bool operator==(const SetTrackArmOrLock&, const SetTrackArmOrLock&) = default;
    };
    /// VISO|track|flag|percent
    struct SetVoiceIsolation {
        std::int64_t trackIndex = 1;
        bool enabled = false;
        std::int64_t amount = 50;
        friend bool operator==(const SetVoiceIsolation&, const SetVoiceIsolation&) = default;
    };
    /// DLEV|track|flag|dB
    struct SetDialogueLeveler {
        std::int64_t trackIndex = 1;
        bool enabled = false;
        double gainDB = 0;
        friend bool operator==(const SetDialogueLeveler&, const SetDialogueLeveler&) = default;
    };
    /// LINK|flag
    struct SetClipsLinked {
        bool linked = false;
        friend bool operator==(const SetClipsLinked&, const SetClipsLinked&) = default;
    };
    /// PAGE|name
    struct OpenPage {
        std::string pageName;
        friend bool operator==(const OpenPage&, const OpenPage&) = default;
    };
    /// TC|timecode
    struct SetTimecode {
        std::string timecode;
        friend bool operator==(const SetTimecode&, const SetTimecode&) = default;
    };
    /// CDL|node|lift R|G|B|gain R|G|B|contrast|saturation
    struct SetColorCDL {
        std::int64_t nodeIndex = 1;
        double liftR = 0;
        double liftG = 0;
        double liftB = 0;
        double gainR = 1;
        double gainG = 1;
        double gainB = 1;
        double contrast = 1;
        double saturation = 1;
        friend bool operator==(const SetColorCDL&, const SetColorCDL&) = default;
    };
    /// NEN|node|flag
    struct SetColorNodeEnabled {
        std::int64_t nodeIndex = 1;
        bool enabled = false;
        friend bool operator==(const SetColorNodeEnabled&, const SetColorNodeEnabled&) = default;
    };
    /// SEL|track; the one command whose index is raised to at least 1 when it is read.
    struct SelectTrack {
        std::int64_t trackIndex = 1;
        friend bool operator==(const SelectTrack&, const SelectTrack&) = default;
    };
    /// SYNC
    struct RequestSnapshot {
        friend bool operator==(const RequestSnapshot&, const RequestSnapshot&) = default;
    };

    using Value = std::variant<SetTrackVolume, SetTrackPan, SetTrackMute, SetTrackSolo, SetTrackArmOrLock,
                               SetVoiceIsolation, SetDialogueLeveler, SetClipsLinked, OpenPage, SetTimecode,
                               SetColorCDL, SetColorNodeEnabled, SelectTrack, RequestSnapshot>;
    Value value;

    /// Nothing for an unknown keyword (upper case only) or too few fields; further fields are ignored. A
    /// number that does not parse becomes the default that stands with its field above; a flag is true only
    /// as "1".
    static std::optional<DAWCommand> decode(std::string_view text);
    /// The command's text. A "|" inside a page name or timecode is left out, as it would end the field.
    [[nodiscard]] std::string encode() const;

    friend bool operator==(const DAWCommand&, const DAWCommand&) = default;
};

}  // namespace orbinex
