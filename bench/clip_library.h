#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orbinex {

/// Noise over a tone, stereo, 48 kHz, in a folder that goes with this object.
class ClipLibrary {
  public:
    static constexpr int sampleRate = 48'000;

    /// Throws std::runtime_error when the folder cannot be made.
    explicit ClipLibrary(int seconds);
    ClipLibrary(const ClipLibrary&) = delete;
    ClipLibrary& operator=(const ClipLibrary&) = delete;
    ~ClipLibrary();

    [[nodiscard]] int seconds() const { return seconds_; }
    /// The sound in a container, by its extension, with the encoder's options for the ffmpeg command. Throws
    /// std::runtime_error when it cannot be made.
    [[nodiscard]] std::string clip(const std::string& extension, const std::string& options = {}) const;
    /// The same clip again and again for this many seconds, without encoding it again.
    [[nodiscard]] std::string longClip(const std::string& clip, int seconds) const;
    /// A WAV file that is silent for so many bytes behind its first second, of which the disk holds nothing.
    [[nodiscard]] std::string sparseWav(std::uint64_t bytes) const;
    /// So many files of it.
    [[nodiscard]] std::vector<std::string> copies(const std::string& clip, std::size_t count) const;

  private:
    int seconds_;
    std::filesystem::path folder_;
};

}  // namespace orbinex
