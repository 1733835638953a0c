#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/application_bundle.h"
#include "app/linux/desktop_opener.h"
#include "app/linux/program_place.h"
#include "app/linux/user_folders.h"
#include "base/lifetime.h"
#include "base/main_queue.h"

class QDBusPendingCallWatcher;

namespace orbinex {

/// What a program that comes as one file or folder is on Linux, where applications of one's own belong in
/// ~/Applications, and a desktop file among the user's data makes them known.
class LinuxBundle final : public ApplicationBundle {
  public:
    /// How long a copy may take until it runs.
    static constexpr std::chrono::seconds launchLimit{10};
    static constexpr std::chrono::milliseconds launchCheckInterval{100};

    /// One instance hands over to the other.
    struct Handover {
        /// This process is no longer the one that runs.
        std::function<void()> release;
        /// Another process is.
        std::function<bool()> isTaken;
        /// This one is again, unless another is.
        std::function<void()> reclaim;
    };
    struct Ports {
        MainQueue& queue;
        DesktopOpener& opener;
        /// Starts the copy, whose window is to come to the front as this one's was.
        DesktopOpener::Start start;
        Handover handover;
        /// If a copy of the program starts at login, it is this one from now on.
        std::function<void(const std::string& program)> startAtLogin;
        std::function<void()> quit;
    };

    LinuxBundle(ProgramPlace place, UserFolders folders, Ports ports);
    ~LinuxBundle() override;

    [[nodiscard]] std::optional<std::string> path() const override { return place_.bundle; }
    [[nodiscard]] bool hasEnvironmentVariable(const char* name) const override;
    [[nodiscard]] std::string applicationsFolder() const override;
    [[nodiscard]] std::optional<std::string> userApplicationsFolder() const override {
        return applicationsFolder();
    }
    [[nodiscard]] bool makeWritable(const std::string& folder) override;
    [[nodiscard]] bool exists(const std::string& path) const override;
    bool moveToTrash(const std::string& path) override;
    bool remove(const std::string& path) override;
    bool copy(const std::string& from, const std::string& to) override;
    void prepareCopy(const std::string& path) override;
    void launch(const std::string& path, std::function<void(bool)> answer) override;
    void terminate() override { ports_.quit(); }
    void reveal(const std::string& path) override;
    void openFolder(const std::string& path) override { ports_.opener.openFolder(path); }

  private:
    [[nodiscard]] std::string programIn(const std::string& copy) const;
    void finishLaunch(bool isRunning);

    ProgramPlace place_;
    UserFolders folders_;
    Ports ports_;
    std::function<void(bool)> answer_;
    Timer launchCheck_;
    std::unique_ptr<QDBusPendingCallWatcher> fileManager_;
    Lifetime lifetime_;
};

}  // namespace orbinex
