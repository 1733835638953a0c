#include "app/app_relocation_manager.h"

#include <utility>

#include "app/relocation_rules.h"

namespace orbinex {

AppRelocationManager::AppRelocationManager(MainQueue& queue, UserDefaults& defaults,
                                           ApplicationBundle& bundle)
    : queue_(queue), defaults_(defaults), bundle_(bundle) {}

void AppRelocationManager::offerMoveIfNeeded() {
    const auto path = bundle_.path();
    if (!path) return;
    const auto userFolder = bundle_.userApplicationsFolder();
    if (!isMoveOffered({.isRunUnderTest = bundle_.hasEnvironmentVariable(testHostVariable),
                        .bundlePath = *path,
                        .userApplicationsFolder = userFolder,
                        .isSuppressed = defaults_.boolean(suppressionKey).value_or(false)}))
        return;
    bundlePath_ = *path;
    offer_ = queue_.after(offerDelay, [this] { alert = moveOffer(); });
}

void AppRelocationManager::answer(std::size_t button, bool isSuppressionTicked) {
    if (!*alert) return;
    const auto kind = (*alert)->kind;
    alert = std::nullopt;
    if (kind != RelocationAlert::Kind::offer) return;
    if (isSuppressionTicked) defaults_.setBoolean(suppressionKey, true);
    if (button == 0) moveToApplications(bundlePath_);
}

void AppRelocationManager::moveToApplications(const std::string& path) {
    const std::string destination = bundle_.applicationsFolder() + "/" + std::string(lastPathComponent(path));
    if (!putCopy(path, destination)) return showManualMoveInstructions(path);
    bundle_.prepareCopy(destination);
    bundle_.launch(destination, lifetime_.guard([this, path](bool isRunning) {
        if (isRunning) return bundle_.terminate();
        showManualMoveInstructions(path);
    }));
}

bool AppRelocationManager::putCopy(const std::string& path, const std::string& destination) {
    // It would take the place of the running program, or be copied into itself.
    if (isIn(destination, path)) return false;
    if (!bundle_.makeWritable(bundle_.applicationsFolder())) return false;
    if (bundle_.exists(destination) && !bundle_.moveToTrash(destination) && !bundle_.remove(destination))
        return false;
    return bundle_.copy(path, destination);
}

void AppRelocationManager::showManualMoveInstructions(const std::string& path) {
    bundle_.reveal(path);
    bundle_.openFolder(bundle_.applicationsFolder());
    alert = manualMoveInstructions();
}

}  // namespace orbinex
