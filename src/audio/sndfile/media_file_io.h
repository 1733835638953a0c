#pragma once

#include <cstdint>

#include <sndfile.h>

#include "audio/media_file.h"

namespace orbinex {

/// A media file as libsndfile's virtual input.
class MediaFileIO {
  public:
    /// `media` must outlive it. `length` is what the file had once; what was cut off since is missing.
    MediaFileIO(MediaFile& media, sf_count_t length) : media_(media), length_(length) {}

    /// For sf_open_virtual, with this object as the user data.
    static SF_VIRTUAL_IO callbacks();

    /// True once bytes that the file should have could not be had.
    [[nodiscard]] bool hasFailed() const { return hasFailed_; }
    /// The most that the file had.
    [[nodiscard]] sf_count_t longest() const { return length_; }
    void forgetFailure() { hasFailed_ = false; }

  private:
    static sf_count_t length(void* io);
    static sf_count_t seek(sf_count_t offset, int whence, void* io);
    static sf_count_t read(void* bytes, sf_count_t count, void* io);
    static sf_count_t write(const void* bytes, sf_count_t count, void* io);
    static sf_count_t tell(void* io);

    MediaFile& media_;
    sf_count_t length_;
    sf_count_t position_ = 0;
    bool hasFailed_ = false;
};

}  // namespace orbinex
