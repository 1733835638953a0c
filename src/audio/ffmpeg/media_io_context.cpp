#include "audio/ffmpeg/media_io_context.h"

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

#include <algorithm>
#include <cstdio>
#include <limits>
#include <span>

namespace orbinex {

namespace {

/// Bytes read at once.
constexpr int blockSize = 32 * 1024;
/// The same while each read is watched.
constexpr int watchedBytes = 1024;
constexpr auto maxOffset = std::numeric_limits<std::int64_t>::max();

}  // namespace

void MediaIOContext::Free::operator()(AVIOContext* context) const {
    // The context may have exchanged the block that it was given.
    av_freep(static_cast<void*>(&context->buffer));
    avio_context_free(&context);
}

MediaIOContext::MediaIOContext(MediaFile& media) : media_(media) {
    auto* block = static_cast<unsigned char*>(av_malloc(blockSize));
    if (!block) return;
    context_.reset(avio_alloc_context(block, blockSize, 0, this, read, nullptr, seek));
    if (!context_) av_free(block);
}

void MediaIOContext::grant(std::uint64_t bytes) {
    granted_ = bytes;
    if (!std::exchange(isExhausted_, false)) return;
    // The libraries remember that reading failed.
    context_->error = 0;
    context_->eof_reached = 0;
}

int MediaIOContext::read(void* io, std::uint8_t* bytes, int count) {
    auto& self = *static_cast<MediaIOContext*>(io);
    if (count <= 0) return AVERROR(EINVAL);
    if (self.mayGoOn_) {
        count = std::min(count, watchedBytes);
        if (!self.mayGoOn_()) self.granted_ = 0;
    }
    const auto wanted = static_cast<std::size_t>(std::min(static_cast<std::uint64_t>(count), self.granted_));
    const auto got = std::min(
        self.media_.read(static_cast<std::uint64_t>(self.position_), std::span(bytes, wanted)), wanted);
    if (got > 0) {
        self.granted_ -= got;
        self.position_ += static_cast<std::int64_t>(got);
        return static_cast<int>(got);
    }
    const auto size = self.media_.size();
    if (size && static_cast<std::uint64_t>(self.position_) >= *size) return AVERROR_EOF;
    (wanted == 0 ? self.isExhausted_ : self.hasFailed_) = true;
    return AVERROR(EIO);
}

std::int64_t MediaIOContext::seek(void* io, std::int64_t offset, int whence) {
    auto& self = *static_cast<MediaIOContext*>(io);
    std::int64_t base = 0;
    const int origin = whence & ~AVSEEK_FORCE;
    if (origin == AVSEEK_SIZE || origin == SEEK_END) {
        const auto size = self.media_.size();
        if (!size) self.hasFailed_ = true;
        if (!size || *size > static_cast<std::uint64_t>(maxOffset)) return AVERROR(EIO);
        base = static_cast<std::int64_t>(*size);
        if (origin == AVSEEK_SIZE) return base;
    } else if (origin == SEEK_CUR) {
        base = self.position_;
    } else if (origin != SEEK_SET) {
        return AVERROR(EINVAL);
    }
    // Headers may lie about offsets as they like. A block is left to read at the very end of what can be
    // counted.
    if (offset < -base || offset > maxOffset - blockSize - base) return AVERROR(EINVAL);
    self.position_ = base + offset;
    return self.position_;
}

}  // namespace orbinex
