#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "audio/media_file.h"

struct AVIOContext;

namespace orbinex {

/// A media file as the libraries' input. It gives no more bytes than were granted, so that no file keeps its
/// reader busy for ever.
class MediaIOContext {
  public:
    /// `media` must outlive it.
    explicit MediaIOContext(MediaFile& media);

    /// Nothing when there was no memory.
    [[nodiscard]] AVIOContext* context() const { return context_.get(); }

    /// From here on this many bytes may be read, whatever was granted before.
    void grant(std::uint64_t bytes);

    /// Asks `mayGoOn` before each read from here on, and reads no more once it says no, as if nothing more
    /// were granted. It is asked every 1024 bytes, since few bytes may claim a lot. Null ends that.
    void watch(std::function<bool()> mayGoOn) { mayGoOn_ = std::move(mayGoOn); }

    /// True once bytes that the file should have could not be had.
    [[nodiscard]] bool hasFailed() const { return hasFailed_; }
    /// True when more were wanted than granted. What the libraries have learnt until then stays right.
    [[nodiscard]] bool isExhausted() const { return isExhausted_; }

  private:
    struct Free {
        void operator()(AVIOContext* context) const;
    };

    static int read(void* io, std::uint8_t* bytes, int count);
    static std::int64_t seek(void* io, std::int64_t offset, int whence);

    MediaFile& media_;
    std::unique_ptr<AVIOContext, Free> context_;
    std::int64_t position_ = 0;
    std::uint64_t granted_ = 0;
    std::function<bool()> mayGoOn_;
    bool hasFailed_ = false;
    bool isExhausted_ = false;
};

}  // namespace orbinex
