#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orbinex {

/// The program as one file or folder that a person can move, and what the platform does with such. Paths are
/// absolute. Nothing waits for the person. Main thread only.
class ApplicationBundle {
  public:
    ApplicationBundle() = default;
    ApplicationBundle(const ApplicationBundle&) = delete;
    ApplicationBundle& operator=(const ApplicationBundle&) = delete;
    virtual ~ApplicationBundle() = default;

    // The places of the program and of folders are compared by their names: they are told without links.

    /// Where the running program lies; nothing when it is not one that can be moved, such as one that the
    /// system's packages have installed.
    [[nodiscard]] virtual std::optional<std::string> path() const = 0;
    [[nodiscard]] virtual bool hasEnvironmentVariable(const char* name) const = 0;
    /// Where applications belong on this system, the folder need not exist.
    [[nodiscard]] virtual std::string applicationsFolder() const = 0;
    /// The user's own such folder; nothing when there is none.
    [[nodiscard]] virtual std::optional<std::string> userApplicationsFolder() const = 0;

    /// Makes the folder where there is none. True when the user may put files into it.
    [[nodiscard]] virtual bool makeWritable(const std::string& folder) = 0;
    [[nodiscard]] virtual bool exists(const std::string& path) const = 0;
    virtual bool moveToTrash(const std::string& path) = 0;
    /// Of files and whole folders.
    virtual bool remove(const std::string& path) = 0;
    /// Of a file or a whole folder to a path where nothing is. A copy that fails leaves nothing there.
    virtual bool copy(const std::string& from, const std::string& to) = 0;
    /// Takes the marks of a download off the copy and makes it known to the desktop. Best effort.
    virtual void prepareCopy(const std::string& path) = 0;

    /// Starts the program that lies there; it may then be the only one. The answer tells whether it runs. The
    /// answer comes on the main queue, not before this returns.
    virtual void launch(const std::string& path, std::function<void(bool isRunning)> answer) = 0;
    /// Ends this program.
    virtual void terminate() = 0;

    /// Shows the file in the file manager.
    virtual void reveal(const std::string& path) = 0;
    virtual void openFolder(const std::string& path) = 0;
};

}  // namespace orbinex
