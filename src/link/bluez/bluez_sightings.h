#pragma once

#include <chrono>
#include <map>
#include <vector>

#include "base/uuid.h"

namespace orbinex {

/// When each device was heard, and when that was passed on. BlueZ reports a device in bursts with pauses
/// between them; this makes a steady report of them.
class BluezSightings {
  public:
    using Uptime = std::chrono::nanoseconds;
    /// BlueZ 5.66 scans for 10.24 s and rests for 5 s, and a controller that filters duplicates reports a
    /// device once a scan: one that was heard within this time may well be there still.
    static constexpr std::chrono::seconds lifetime{16};
    /// A device in sight is reported this often though nothing new is heard of it.
    static constexpr std::chrono::seconds repetition{3};
    /// However often it is heard, it is not reported more often than this.
    static constexpr std::chrono::milliseconds shortestInterval{300};

    void clear() { sightings_.clear(); }
    void forget(const UUID& device) { sightings_.erase(device); }
    /// The device was heard; true when it is to be reported now.
    bool heard(const UUID& device, Uptime now);
    [[nodiscard]] bool isInSight(const UUID& device, Uptime now) const;
    /// The devices in sight that are to be reported again now.
    std::vector<UUID> due(Uptime now);

  private:
    struct Sighting {
        Uptime heard;
        Uptime reported;
    };
    std::map<UUID, Sighting> sightings_;
};

}  // namespace orbinex
