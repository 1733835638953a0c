#include "app/terminal_report.h"

#include <optional>
#include <utility>

namespace orbinex {

TerminalReport::TerminalReport(AppCoordinator& app, Print print) : print_(std::move(print)) {
    CentralBLEManager& link = app.centralManager;
    AccessibilityPermissionManager& permission = app.accessibilityManager;
    tellStatus(*link.statusMessage);
    tellMissing(*permission.explanation);
    observers_.push_back(
        link.statusMessage.onDidChange([this](const std::string& line) { tellStatus(line); }));
    observers_.push_back(link.alert.onDidChange([this](const std::optional<BLEAlert>& alert) {
        if (alert) print_(alert->title + ": " + alert->message);
    }));
    observers_.push_back(
        permission.explanation.onDidChange([this](const std::string& text) { tellMissing(text); }));
}

void TerminalReport::tellStatus(const std::string& line) {
    if (std::exchange(status_, line) != line) print_(line);
}

void TerminalReport::tellMissing(const std::string& explanation) const {
    if (!explanation.empty()) print_(explanation);
}

}  // namespace orbinex
