#pragma once

#include <cstdint>
#include <optional>

namespace orbinex {

/// The unit of a stream's timestamps in seconds, as a fraction.
struct TimeBase {
    int numerator = 1;
    int denominator = 1;
};

/// Turns timestamps into positions, counted in frames from the first sample that is heard. What the codec
/// puts before that lies below 0.
class FramePlacement {
  public:
    /// `firstTimestamp` is that of the first decoded frame that is heard, of whose samples `skipped` at its
    /// beginning are not. `step` is what the stream's frames begin at multiples of, counted from there; with
    /// timestamps as coarse as milliseconds it restores what they round away.
    FramePlacement(TimeBase timeBase, int sampleRate, std::int64_t firstTimestamp, std::int64_t skipped,
                   std::int64_t step);

    /// Where the decoded frame with this timestamp begins. `expected` is where the frame before it ended,
    /// nothing after a seek.
    [[nodiscard]] std::int64_t position(std::int64_t timestamp, std::optional<std::int64_t> expected) const;

    /// A timestamp that is not after `position`.
    [[nodiscard]] std::int64_t timestampBefore(std::int64_t position) const;

  private:
    TimeBase timeBase_;
    int sampleRate_;
    std::int64_t firstTimestamp_;
    std::int64_t skipped_;
    /// 1 where timestamps tell every frame apart.
    std::int64_t step_;
    /// How far a timestamp may be from the truth, in frames.
    std::int64_t tolerance_;
};

}  // namespace orbinex
