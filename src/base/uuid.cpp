#include "base/uuid.h"

#include <algorithm>

namespace orbinex {

std::optional<UUID> UUID::fromBytes(ByteView value) {
    UUID result;
    if (value.size() != result.bytes.size()) return std::nullopt;
    std::ranges::copy(value, result.bytes.begin());
    return result;
}

UUID UUID::random() {
    static thread_local std::mt19937_64 generator = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    return random(generator);
}

UUID UUID::random(std::mt19937_64& generator) {
    UUID result;
    for (std::size_t i = 0; i < result.bytes.size(); i += 8) {
        std::uint64_t word = generator();
        for (std::size_t k = 0; k < 8; ++k, word >>= 8) result.bytes[i + k] = static_cast<std::uint8_t>(word);
    }
    // RFC 4122, section 4.4: version 4, variant 10.
    result.bytes[6] = static_cast<std::uint8_t>((result.bytes[6] & 0x0F) | 0x40);
    result.bytes[8] = static_cast<std::uint8_t>((result.bytes[8] & 0x3F) | 0x80);
    return result;
}

std::string UUID::text() const {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string result;
    result.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) result.push_back('-');
        result.push_back(digits[bytes[i] >> 4]);
        result.push_back(digits[bytes[i] & 0x0F]);
    }
    return result;
}

}  // namespace orbinex
