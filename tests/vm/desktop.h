#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "input/x11/x_client.h"
#include "support/private_x_server.h"

namespace orbinex::test {

/// A display with one program on it, which has the focus and sees everything that is typed, clicked and
/// moved.
class Desktop {
  public:
    Desktop();

    /// Such as ":7".
    [[nodiscard]] const std::string& display() const { return server_.display(); }
    [[nodiscard]] XClient& client() const { return *client_; }

    /// That no key and no button is down, no modifier set, the keyboard's map as it was at first, and that no
    /// program has a note on the display of what it holds.
    [[nodiscard]] testing::AssertionResult nothingIsHeldDown() const;

  private:
    PrivateXServer server_;
    std::unique_ptr<XClient> client_;
    std::string keyboardMap_;
};

}  // namespace orbinex::test
