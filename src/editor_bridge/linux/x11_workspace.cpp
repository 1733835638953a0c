#include "editor_bridge/linux/x11_workspace.h"

#include <algorithm>
#include <array>
#include <utility>

#include "editor_bridge/known_editors.h"

namespace orbinex {

namespace {

using Applications = std::vector<RunningApplication>;

bool contains(const Applications& applications, const RunningApplication& application) {
    return std::ranges::find(applications, application) != applications.end();
}

/// Those of `some` that are not among `others`.
Applications without(const Applications& some, const Applications& others) {
    Applications rest;
    std::ranges::copy_if(some, std::back_inserter(rest),
                         [&](const auto& application) { return !contains(others, application); });
    return rest;
}

bool haveEditor(const Applications& applications) {
    return std::ranges::any_of(
        applications, [](const auto& application) { return editorWithID(application.bundleID) != nullptr; });
}

}  // namespace

X11Workspace::X11Workspace(MainQueue& queue, const std::string& displayName, DesktopFiles desktopFiles,
                           const std::string& processes)
    : queue_(queue),
      desktopFiles_(std::move(desktopFiles)),
      processes_(
          queue, [this] { update(); }, processes),
      windows_(displayName, [this] { update(); }) {
    update();
}

void X11Workspace::update() {
    Applications now = present();
    Applications launched = without(now, running_);
    Applications terminated = without(running_, now);
    // The windows tell sooner than the processes are looked at, but only these tell whether an editor runs.
    if ((haveEditor(launched) || haveEditor(terminated)) && processes_.scan()) {
        now = present();
        launched = without(now, running_);
        terminated = without(running_, now);
    }
    std::erase_if(running_, [&](const auto& application) { return contains(terminated, application); });
    running_.insert(running_.end(), launched.begin(), launched.end());
    for (const auto& application : launched) didLaunch.emit(application);
    if (front_ && contains(terminated, *front_)) front_.reset();
    for (const auto& application : terminated) didTerminate.emit(application);
    updateFront();
}

void X11Workspace::updateFront() {
    auto active = activeApplication();
    if (!active) {
        if (front_ && !settling_.isActive())
            settling_ = queue_.after(settlingTime, [this] { front_.reset(); });
        return;
    }
    settling_.cancel();
    if (front_ == active) return;
    front_ = active;
    didActivate.emit(*active);
}

std::vector<RunningApplication> X11Workspace::present() {
    Applications applications;
    const auto add = [&](const RunningApplication& application) {
        if (!contains(applications, application)) applications.push_back(application);
    };
    for (const auto window : windows_.all()) {
        if (windows_.facts(window).isOrdinary) add(applicationOf(window));
    }
    processes_.forEachEditor(add);
    std::erase_if(identified_, [this](const auto& entry) {
        return std::ranges::find(windows_.all(), entry.first) == windows_.all().end();
    });
    return applications;
}

std::optional<RunningApplication> X11Workspace::activeApplication() {
    const auto window = windows_.active();
    if (window == 0 || !windows_.facts(window).isOrdinary) return std::nullopt;
    return applicationOf(window);
}

const RunningApplication& X11Workspace::applicationOf(X11Windows::Window window) {
    const WindowFacts& facts = windows_.facts(window);
    const auto known = identified_.find(window);
    if (known != identified_.end() && known->second.facts == facts) return known->second.application;
    auto& entry = identified_[window];
    entry = {facts, identify(facts)};
    return entry.application;
}

RunningApplication X11Workspace::identify(const WindowFacts& facts) {
    const std::string program = processes_.programOf(facts.pid);
    for (const auto& name : {facts.windowClass, facts.instance, program}) {
        if (const auto* editor = editorNamed(name)) return *editor;
    }
    const std::array names{facts.windowClass, facts.instance};
    const auto& ownName = !facts.windowClass.empty() ? facts.windowClass
                          : !facts.instance.empty()  ? facts.instance
                                                     : program;
    if (const auto* file = desktopFiles_.find(names, program))
        return {file->id, file->name.empty() ? ownName : file->name};
    return {ownName, ownName.empty() ? facts.title : ownName};
}

}  // namespace orbinex
