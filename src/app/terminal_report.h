#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/app_coordinator.h"

namespace orbinex {

/// Prints what a person is told unasked: the status line whenever it is another one, alerts, and why input
/// cannot be injected.
class TerminalReport {
  public:
    using Print = std::function<void(const std::string&)>;

    /// Prints how things stand at once. Both must outlive it.
    TerminalReport(AppCoordinator& app, Print print);
    TerminalReport(const TerminalReport&) = delete;
    TerminalReport& operator=(const TerminalReport&) = delete;

  private:
    void tellStatus(const std::string& line);
    void tellMissing(const std::string& explanation) const;

    Print print_;
    std::string status_;
    std::vector<Subscription> observers_;
};

}  // namespace orbinex
