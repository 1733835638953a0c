#pragma once

namespace orbinex {

/// What a person picks in a workstation.
struct MIDISurfaceNames {
    static constexpr const char* client = "Orbinex Studio Surface Client";
    /// We play on it.
    static constexpr const char* source = "Orbinex Studio Surface";
    /// The workstation reports to it.
    static constexpr const char* destination = "Orbinex Studio Surface Feedback";
};

}  // namespace orbinex
