#include "audio/sndfile/media_file_io.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <span>

namespace orbinex {

namespace {

constexpr auto maxCount = std::numeric_limits<sf_count_t>::max();

}  // namespace

SF_VIRTUAL_IO MediaFileIO::callbacks() {
    return {length, seek, read, write, tell};
}

sf_count_t MediaFileIO::length(void* io) {
    auto& self = *static_cast<MediaFileIO*>(io);
    const auto size = self.media_.size();
    if (!size) {
        self.hasFailed_ = true;
        return 0;
    }
    self.length_ = std::max(self.length_, static_cast<sf_count_t>(std::min<std::uint64_t>(*size, maxCount)));
    return self.length_;
}

sf_count_t MediaFileIO::seek(sf_count_t offset, int whence, void* io) {
    auto& self = *static_cast<MediaFileIO*>(io);
    sf_count_t base = 0;
    if (whence == SEEK_CUR) base = self.position_;
    if (whence == SEEK_END) base = length(io);
    // Headers may lie about offsets as they like.
    if (offset < -base || offset > maxCount - base) return -1;
    self.position_ = base + offset;
    return self.position_;
}

sf_count_t MediaFileIO::read(void* bytes, sf_count_t count, void* io) {
    auto& self = *static_cast<MediaFileIO*>(io);
    if (count <= 0) return 0;
    const std::span room(static_cast<std::uint8_t*>(bytes), static_cast<std::size_t>(count));
    const auto got =
        std::min(self.media_.read(static_cast<std::uint64_t>(self.position_), room), room.size());
    self.position_ += static_cast<sf_count_t>(
        std::min<std::uint64_t>(got, static_cast<std::uint64_t>(maxCount - self.position_)));
    if (got < room.size() && self.position_ < length(io)) self.hasFailed_ = true;
    return static_cast<sf_count_t>(got);
}

sf_count_t MediaFileIO::write(const void*, sf_count_t, void*) {
    return 0;
}

sf_count_t MediaFileIO::tell(void* io) {
    return static_cast<MediaFileIO*>(io)->position_;
}

}  // namespace orbinex
