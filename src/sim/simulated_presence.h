#pragma once

#include <string>
#include <vector>

#include "app/application_presence.h"

namespace orbinex {

/// A place on the desktop that notes what is done with it.
class SimulatedPresence final : public ApplicationPresence {
  public:
    [[nodiscard]] ActivationPolicy activationPolicy() const override { return policy; }
    void setActivationPolicy(ActivationPolicy next) override {
        policy = next;
        calls.emplace_back(next == ActivationPolicy::regular ? "regular" : "accessory");
    }
    void activate() override { calls.emplace_back("activate"); }
    void bringVisibleWindowToFront() override { calls.emplace_back("raise"); }

    ActivationPolicy policy = ActivationPolicy::regular;
    std::vector<std::string> calls;
};

}  // namespace orbinex
