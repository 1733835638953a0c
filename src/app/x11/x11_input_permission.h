#pragma once

#include <string>

#include "app/input_permission.h"

namespace orbinex {

class X11Connection;

/// Whether an X server takes input from programs: its XTEST extension answers, and its windows are all there
/// are. No request can change that; what the person can do is explained.
class X11InputPermission final : public InputPermission {
  public:
    /// The connection must outlive the permission.
    explicit X11InputPermission(X11Connection& connection) : connection_(connection) {}

    [[nodiscard]] bool isGranted() override;
    bool request() override { return isGranted(); }
    [[nodiscard]] std::string explanation() override;

  private:
    enum class Obstacle { none, noServer, noExtension, waylandSession };
    [[nodiscard]] Obstacle obstacle();
    [[nodiscard]] bool isXwayland();

    X11Connection& connection_;
};

}  // namespace orbinex
