#pragma once

#include <string>

#include "app/input_permission.h"

namespace orbinex {

/// A permission that is as it is set. Asking is counted, and grants it only where it is set to.
class SimulatedInputPermission final : public InputPermission {
  public:
    explicit SimulatedInputPermission(bool granted = true) : granted_(granted) {}

    [[nodiscard]] bool isGranted() override {
        ++checks;
        return granted_;
    }
    bool request() override {
        ++requests;
        if (isGrantedOnRequest) granted_ = true;
        return granted_;
    }
    [[nodiscard]] std::string explanation() override { return granted_ ? "" : missing; }

    /// The person allows or forbids it elsewhere.
    void setGranted(bool granted) { granted_ = granted; }

    bool isGrantedOnRequest = false;
    std::string missing = "The desktop does not take input from programs.";
    int checks = 0;
    int requests = 0;

  private:
    bool granted_;
};

}  // namespace orbinex
