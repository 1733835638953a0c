#include "app/linux/linux_bundle.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QFile>
#include <QStringList>
#include <QUrl>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "app/linux/application_id.h"
#include "app/linux/desktop_entry.h"
#include "app/linux/folder_copy.h"
#include "app/linux/real_path.h"
#include "app/linux/single_instance.h"
#include "app/linux/small_file.h"

namespace orbinex {

namespace {

namespace fs = std::filesystem;

/// What browsers write down of a download.
constexpr std::array downloadMarks{"user.xdg.origin.url", "user.xdg.referrer.url"};

void removeDownloadMarks(const std::string& path) {
    std::error_code error;
    const auto clear = [](const fs::path& item) {
        for (const char* const mark : downloadMarks) ::lremovexattr(item.c_str(), mark);
    };
    clear(path);
    if (!fs::is_directory(fs::symlink_status(path, error))) return;
    for (fs::recursive_directory_iterator item(path, error), end; !error && item != end;
         item.increment(error))
        clear(item->path());
}

/// What makes the copy known is what came with it, apart from where it lies.
std::string launcherText(const std::string& text, const std::string& program) {
    const auto quitting =
        withDesktopEntryValue(text, "Exec", execValue({program, quitArgument}), "Desktop Action Quit");
    return withDesktopEntryValue(withDesktopEntryValue(quitting, "TryExec", program), "Exec",
                                 execValue({program}));
}

QDBusMessage showInFileManager(const std::string& path) {
    auto message =
        QDBusMessage::createMethodCall("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                                       "org.freedesktop.FileManager1", "ShowItems");
    message << QStringList(QUrl::fromLocalFile(QFile::decodeName(path.c_str())).toString(QUrl::FullyEncoded))
            << QString();
    return message;
}

}  // namespace

LinuxBundle::LinuxBundle(ProgramPlace place, UserFolders folders, Ports ports)
    : place_(std::move(place)), folders_(std::move(folders)), ports_(std::move(ports)) {}
LinuxBundle::~LinuxBundle() = default;

std::string LinuxBundle::applicationsFolder() const {
    return realPath(folders_.home + "/Applications");
}

bool LinuxBundle::hasEnvironmentVariable(const char* name) const {
    return std::getenv(name) != nullptr;
}

bool LinuxBundle::makeWritable(const std::string& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    return fs::is_directory(folder, error) && ::access(folder.c_str(), W_OK | X_OK) == 0;
}

bool LinuxBundle::exists(const std::string& path) const {
    struct stat about {};
    return ::lstat(path.c_str(), &about) == 0;
}

bool LinuxBundle::moveToTrash(const std::string& path) {
    // Where Qt cannot make the user's trash, it takes the present folder for one.
    return makeWritable(folders_.data) && QFile::moveToTrash(QFile::decodeName(path.c_str()));
}

bool LinuxBundle::remove(const std::string& path) {
    std::error_code error;
    fs::remove_all(path, error);
    return !error;
}

bool LinuxBundle::copy(const std::string& from, const std::string& to) {
    return copyWhole(from, to);
}

std::string LinuxBundle::programIn(const std::string& copy) const {
    std::error_code error;
    return fs::is_directory(copy, error) ? copy + "/bin/orbinex" : copy;
}

void LinuxBundle::prepareCopy(const std::string& path) {
    removeDownloadMarks(path);
    const std::string program = programIn(path);
    std::error_code error;
    fs::permissions(program, fs::perms::owner_exec, fs::perm_options::add, error);
    const std::string icon = std::string("/icons/hicolor/scalable/apps/") + applicationId + ".svg";
    if (const auto drawing = readSmallFile(place_.root + "/share" + icon))
        writeSmallFile(folders_.data + icon, *drawing);
    const std::string launcher = std::string("/applications/") + applicationId + ".desktop";
    if (const auto text = readSmallFile(place_.root + "/share" + launcher))
        writeSmallFile(folders_.data + launcher, launcherText(*text, program));
}

void LinuxBundle::launch(const std::string& path, std::function<void(bool)> answer) {
    answer_ = std::move(answer);
    ports_.handover.release();
    const std::string program = programIn(path);
    if (!ports_.start({program})) return ports_.queue.post(lifetime_.guard([this] { finishLaunch(false); }));
    const auto deadline = ports_.queue.uptime() + launchLimit;
    launchCheck_ = ports_.queue.every(launchCheckInterval, [this, deadline, program] {
        if (ports_.handover.isTaken()) {
            ports_.startAtLogin(program);
            return finishLaunch(true);
        }
        if (ports_.queue.uptime() >= deadline) finishLaunch(false);
    });
}

void LinuxBundle::finishLaunch(bool isRunning) {
    launchCheck_.cancel();
    if (!isRunning) ports_.handover.reclaim();
    std::exchange(answer_, nullptr)(isRunning);
}

void LinuxBundle::reveal(const std::string& path) {
    constexpr int longest = 3000;  // milliseconds
    const auto answer = QDBusConnection::sessionBus().asyncCall(showInFileManager(path), longest);
    fileManager_ = std::make_unique<QDBusPendingCallWatcher>(answer);
    QObject::connect(fileManager_.get(), &QDBusPendingCallWatcher::finished, [this, path] {
        // Without a bus or a file manager on it, any program that shows folders will do.
        if (fileManager_->isError()) ports_.opener.openFolder(fs::path(path).parent_path());
    });
}

}  // namespace orbinex
