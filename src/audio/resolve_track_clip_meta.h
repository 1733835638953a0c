#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace orbinex {

/// Which clip plays on an audio track, and from where in its media.
struct ResolveTrackClipMeta {
    /// 1-based.
    std::int64_t trackIndex = 0;
    /// A clip is under the playhead; without one the rest is empty and 0.
    bool hasActiveClip = false;
    std::string clipUID = {};
    /// Timeline frame at which the clip begins.
    std::int64_t clipStartFrame = 0;
    /// Frame of the media that is heard there.
    std::int64_t sourceStartFrame = 0;
    /// Of the clip's media; as the editor tells it.
    std::string filePath = {};

    friend bool operator==(const ResolveTrackClipMeta&, const ResolveTrackClipMeta&) = default;
};

/// By track index.
using ResolveTrackClips = std::map<std::int64_t, ResolveTrackClipMeta>;

}  // namespace orbinex
