#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

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
    /// beginning are not. `steps`, each above 0, are those from one place where a frame may begin to the
    /// next, from there on, over and over; with timestamps as coarse as milliseconds they restore what these
    /// round away. None when frames may begin anywhere. A timestamp may be up to `lateness` frames after the
    /// truth.
    FramePlacement(TimeBase timeBase, int sampleRate, std::int64_t firstTimestamp, std::int64_t skipped,
                   std::span<const std::int64_t> steps, std::int64_t lateness = 0);

    /// True when timestamps do not tell every frame of samples apart, so that the steps matter.
    static bool needsSteps(TimeBase timeBase, int sampleRate);

    /// Where the decoded frame with this timestamp begins. `expected` is where the frame before it ended,
    /// nothing after a seek.
    [[nodiscard]] std::int64_t position(std::int64_t timestamp, std::optional<std::int64_t> expected) const;

    /// True when a frame that begins here tells that the one before, which ended at `expected`, had a late
    /// timestamp.
    [[nodiscard]] bool tellsOfLateness(std::int64_t position, std::int64_t expected) const {
        return position < expected && position >= expected - lateness_;
    }

    /// A timestamp that is not after `position`.
    [[nodiscard]] std::int64_t timestampBefore(std::int64_t position) const;

  private:
    [[nodiscard]] std::int64_t nearestBeginning(std::int64_t distance) const;

    TimeBase timeBase_;
    int sampleRate_;
    std::int64_t lateness_;
    std::int64_t firstTimestamp_;
    std::int64_t skipped_;
    /// Where frames may begin, from 0 to where it begins anew; none when anywhere.
    std::vector<std::int64_t> beginnings_;
    /// How far a timestamp may be from the truth, in frames.
    std::int64_t tolerance_ = 0;
};

}  // namespace orbinex
