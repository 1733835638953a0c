#pragma once

#include <string>
#include <string_view>

#include "app/input_permission.h"

namespace orbinex {

class X11Connection;

/// Whether an X server takes input from programs: its XTEST extension answers, the devices that it makes of
/// that are on, and its windows are all there are. Whoever may use the server may switch the devices on
/// again, and asking for the permission does that; the rest is for the person to change.
class X11InputPermission final : public InputPermission {
  public:
    /// The connection must outlive the permission.
    explicit X11InputPermission(X11Connection& connection) : connection_(connection) {}

    [[nodiscard]] bool isGranted() override;
    bool request() override;
    [[nodiscard]] std::string explanation() override;

  private:
    enum class Obstacle { none, noServer, noExtension, waylandSession, devicesOff };
    [[nodiscard]] Obstacle obstacle();
    [[nodiscard]] bool isXwayland();

    X11Connection& connection_;
};

}  // namespace orbinex
