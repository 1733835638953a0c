#pragma once

#include <optional>

namespace orbinex {

/// The volume of the computer's default sound output. Main thread only.
class SystemVolume {
  public:
    SystemVolume() = default;
    SystemVolume(const SystemVolume&) = delete;
    SystemVolume& operator=(const SystemVolume&) = delete;
    virtual ~SystemVolume() = default;

    /// 0 to 1 on the scale that the desktop's mixers show; what was written last, until the output says
    /// otherwise. Nothing while there is no output.
    [[nodiscard]] virtual std::optional<double> read() const = 0;
    /// The same scale; limited to it. Nothing happens while there is no output.
    virtual void write(double position) = 0;
};

}  // namespace orbinex
