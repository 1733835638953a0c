#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "audio/mono_read.h"

namespace orbinex {

/// Reads a window of a stereo file folded to mono, in the plainest way: what the meters are measured beside.
class WindowReader {
  public:
    WindowReader() = default;
    WindowReader(const WindowReader&) = delete;
    WindowReader& operator=(const WindowReader&) = delete;
    virtual ~WindowReader() = default;

    /// `mono` has room for `frames`, of which there are at most 2048.
    virtual MonoRead read(std::int64_t start, std::size_t frames, float* mono) = 0;
};

// Each throws std::runtime_error when the file cannot be opened.

/// pread() on a 16-bit WAV file with a head of 44 bytes.
std::unique_ptr<WindowReader> wavWindowReader(const std::string& path);
/// libsndfile, seeking before every read.
std::unique_ptr<WindowReader> sndfileWindowReader(const std::string& path);
/// FFmpeg's libraries, seeking before every read.
std::unique_ptr<WindowReader> libavWindowReader(const std::string& path);

}  // namespace orbinex
