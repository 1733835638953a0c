#include "editor_bridge/app_watcher_daemon.h"

#include <algorithm>

#include "editor_bridge/known_editors.h"

namespace orbinex {

AppWatcherDaemon::AppWatcherDaemon(const Ports& ports)
    : queue_(ports.queue),
      workspace_(ports.workspace),
      scriptHost_(ports.scriptHost),
      commandFile_(ports.commandFile),
      volume_(ports.volume),
      midi_(ports.midi),
      lastPlayheadUpdateUptime_(ports.queue.uptime()),
      meterEngine_(ports.clips) {
    setupMIDISurface();
    syncSystemVolume();
    activateObserver_ = workspace_.didActivate.subscribe(
        [this](const RunningApplication& application) { applicationActivated(application); });
    launchObserver_ =
        workspace_.didLaunch.subscribe([this](const RunningApplication&) { ensureResolveBridge(); });
    terminateObserver_ = workspace_.didTerminate.subscribe(
        [this](const RunningApplication& application) { applicationTerminated(application); });
    refreshCurrentApp();
    ensureResolveBridge();
    meterTimer_ = queue_.every(meterInterval, [this] { meterTick(); });
    supervisorTimer_ = queue_.every(supervisorInterval, [this] {
        ensureResolveBridge();
        syncSystemVolume();
    });
}

AppWatcherDaemon::~AppWatcherDaemon() {
    midi_.stop();
}

void AppWatcherDaemon::refreshCurrentApp() {
    if (const auto application = workspace_.frontmostApplication()) publishCurrentApp(*application);
}

void AppWatcherDaemon::publishCurrentApp(const RunningApplication& application) {
    setActiveBundleID(application.bundleID);
    activeAppName = application.localizedName;
    updateEditorIdentity(application.bundleID);
    if (onActiveAppChanged) onActiveAppChanged(application.bundleID);
}

void AppWatcherDaemon::applicationActivated(const RunningApplication& application) {
    if (application.bundleID != *activeBundleID) publishCurrentApp(application);
    ensureResolveBridge();
}

void AppWatcherDaemon::applicationTerminated(const RunningApplication& application) {
    if (isResolveID(application.bundleID)) stopResolveBridge();
}

bool AppWatcherDaemon::isResolveRunning() const {
    return std::ranges::any_of(workspace_.runningApplications(), isResolve);
}

void AppWatcherDaemon::updateEditorIdentity(const std::string& bundleID) {
    if (const auto* editor = editorWithin(bundleID)) {
        setEditor(*editor);
        broadcastFullDAWSnapshot();
    } else if (isResolveRunning()) {
        setEditor(knownEditors().front());
    }
}

void AppWatcherDaemon::setEditor(const KnownEditor& editor) {
    dawSnapshot.edit([&](DAWSessionSnapshot& session) { session.dawID = editor.application.bundleID; });
    SessionTelemetry telemetry = *currentTelemetry;
    telemetry.appVersion = editor.isToldByName ? editor.application.localizedName : resolveVersion_;
    if (telemetry != *currentTelemetry) publishTelemetry(telemetry);
}

void AppWatcherDaemon::ensureResolveBridge() {
    if (!isResolveRunning()) {
        stopResolveBridge();
    } else if (!isBridgeRunning()) {
        startResolveBridge();
    }
}

void AppWatcherDaemon::setBLEClientConnected(bool connected) {
    isBLEClientConnected_ = connected;
    if (!connected) return;
    refreshCurrentApp();
    syncSystemVolume();
    enqueueResolveCommand("REFRESH");
    ensureResolveBridge();
    broadcastFullDAWSnapshot();
}

}  // namespace orbinex
