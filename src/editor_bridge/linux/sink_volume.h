#pragma once

#include <cstdint>
#include <optional>

#include <pulse/volume.h>

namespace orbinex {

/// How loud a sink plays, channel by channel.
struct SinkVolume {
    /// The sound server's number of the sink.
    std::uint32_t sink = 0;
    pa_cvolume channels{};
};

/// The loudest channel as mixers show it, from 0 to 1; amplified is 1 too, and no channels are 0.
double positionOf(const pa_cvolume& channels);

/// Turns positions into the channels of a sink, keeping the balance that people have set between them.
class SinkBalance {
  public:
    /// Takes what the sink says of itself. The channels that were set here last tell nothing new: near zero
    /// they are too coarse to bring the balance back from, and zero has none at all.
    void learn(const SinkVolume& reported);
    /// The channels for a position from 0 to 1 of the sink that was learned last; remembers them as set.
    SinkVolume set(double position);

  private:
    std::optional<SinkVolume> balance_;
    std::optional<pa_cvolume> set_;
};

}  // namespace orbinex
