#pragma once

#include <chrono>
#include <map>

#include "base/uuid.h"

namespace orbinex {

/// When each device was heard, and when that was passed on.
class BluezSightings {
  public:
    using Uptime = std::chrono::nanoseconds;
    /// A device that was heard within this time may well be there still: it is reported once a round of
    /// discovery, and two rounds may miss it.
    static constexpr std::chrono::seconds lifetime{12};
    /// However often it is heard, it is not reported more often than this.
    static constexpr std::chrono::milliseconds shortestInterval{300};

    void clear() { sightings_.clear(); }
    /// The next time that a device is heard, it is reported.
    void reportAnew();
    /// The device was heard; true when it is to be reported now.
    bool heard(const UUID& device, Uptime now);
    [[nodiscard]] bool isInSight(const UUID& device, Uptime now) const;

  private:
    struct Sighting {
        Uptime heard;
        Uptime reported;
    };
    std::map<UUID, Sighting> sightings_;
};

}  // namespace orbinex
