#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "app/application_bundle.h"
#include "app/relocation_alert.h"
#include "base/lifetime.h"
#include "base/main_queue.h"
#include "base/published.h"
#include "base/user_defaults.h"

namespace orbinex {

/// Offers, once a launch, to move the program to where applications belong. Whatever fails on the way ends in
/// instructions to do it by hand.
class AppRelocationManager {
  public:
    static constexpr const char* suppressionKey = "OrbinexSuppressMoveToApplicationsAlert";
    static constexpr std::chrono::milliseconds offerDelay{600};

    /// All must outlive the manager.
    AppRelocationManager(MainQueue& queue, UserDefaults& defaults, ApplicationBundle& bundle);
    AppRelocationManager(const AppRelocationManager&) = delete;
    AppRelocationManager& operator=(const AppRelocationManager&) = delete;

    /// The message box that waits for an answer. Nobody need show it: then nothing more happens.
    Published<std::optional<RelocationAlert>, AppRelocationManager> alert;

    /// The check at launch; returns at once, the alert follows.
    void offerMoveIfNeeded();
    /// What the person has chosen: the number of the button, and whether the check box is ticked. The alert
    /// goes, and what was chosen is done. Does nothing when no alert waits. Closing the message box is its
    /// last button.
    void answer(std::size_t button, bool isSuppressionTicked = false);

  private:
    void moveToApplications(const std::string& path);
    [[nodiscard]] bool putCopy(const std::string& path, const std::string& destination);
    void showManualMoveInstructions(const std::string& path);

    MainQueue& queue_;
    UserDefaults& defaults_;
    ApplicationBundle& bundle_;
    /// Where the program lies that the alert is about.
    std::string bundlePath_;
    Timer offer_;
    Lifetime lifetime_;
};

}  // namespace orbinex
