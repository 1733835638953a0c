#include "audio/clip_source_opener.h"

#include "base/text.h"

namespace orbinex {

namespace {

/// The path's extension without its dot; empty when the last component has none. A leading dot begins no
/// extension.
std::string_view extensionOf(std::string_view path) {
    const auto slash = path.rfind('/');
    const auto name = slash == std::string_view::npos ? path : path.substr(slash + 1);
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    return name.substr(dot + 1);
}

}  // namespace

CachedAudioSource openAudioSource(const std::string& path, ClipMedia& media) {
    if (lowercased(extensionOf(path)) == "r3d") {
        if (auto reader = R3DAudioClipReader::create(path, media)) return reader;
    } else if (auto reader = AVAudioClipReader::create(media.openAudioFile(path))) {
        return reader;
    }
    return UnsupportedSource{};
}

}  // namespace orbinex
