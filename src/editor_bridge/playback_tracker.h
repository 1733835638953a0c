#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace orbinex {

/// Infers whether and how fast the editor plays from the timecodes that it reports.
class PlaybackTracker {
  public:
    using Uptime = std::chrono::nanoseconds;
    /// Two steps of the playhead tell a speed when the time between them is longer and shorter than these.
    static constexpr Uptime shortestStep = std::chrono::milliseconds(10);
    static constexpr Uptime longestStep = std::chrono::milliseconds(250);
    /// A playhead that has not moved for this long stands.
    static constexpr std::chrono::milliseconds standstill{180};

    enum class Movement {
        none,    ///< the same frame, or a timecode that cannot be read
        jumped,  ///< to another frame, at no speed that could be told
        played,
    };
    struct Step {
        Movement movement = Movement::none;
        /// One of the labels of PlaybackSpeed when it played, else empty.
        std::string_view speed;

        friend bool operator==(const Step&, const Step&) = default;
    };

    /// The playhead went from one timecode to another, as reported at `now`. Allocates nothing.
    Step observe(std::string_view from, std::string_view to, double fps, Uptime now);

  private:
    Uptime lastFrameAdvanceTime_{0};
};

/// The label for a speed in multiples of the normal one; negative is backward.
std::string_view playbackSpeedLabel(double rate);

}  // namespace orbinex
