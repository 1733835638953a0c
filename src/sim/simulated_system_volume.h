#pragma once

#include <algorithm>
#include <optional>
#include <vector>

#include "editor_bridge/system_volume.h"

namespace orbinex {

/// An output whose volume is a number; nothing while there is no output.
class SimulatedSystemVolume final : public SystemVolume {
  public:
    [[nodiscard]] std::optional<double> read() const override { return position; }
    void write(double value) override {
        if (!position) return;
        position = std::clamp(value, 0.0, 1.0);
        writes.push_back(*position);
    }

    std::optional<double> position;
    std::vector<double> writes;
};

}  // namespace orbinex
