#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "editor_bridge/linux/desktop_file.h"

namespace orbinex {

/// The desktop files of the installed applications, kept in memory and read again when a folder has changed.
class DesktopFiles {
  public:
    // Limits for folders that anybody may have filled.
    static constexpr std::size_t maxFiles = 4000;
    static constexpr std::size_t maxFileSize = 256UL * 1024;
    static constexpr int maxDepth = 4;

    /// Reads them. `dataFolders` hold a folder "applications" each, the most important first; the locale is
    /// that of the names.
    DesktopFiles(std::vector<std::filesystem::path> dataFolders, std::string locale);
    /// Those of the session: XDG_DATA_HOME, XDG_DATA_DIRS and the locale of the environment.
    static DesktopFiles ofSession();

    /// The application whose windows have one of these names, in letters of either case: by the class that it
    /// announces, else by its id, else by its program, which may also be `program` (empty: not known).
    /// Several that start the same program are told apart by nothing, so none of them is meant. Valid until
    /// the next call; null when there is none.
    const DesktopFile* find(std::span<const std::string> names, const std::string& program);

  private:
    struct Folder {
        std::filesystem::path path;
        std::filesystem::file_time_type changed;
    };
    using Index = std::unordered_map<std::string, std::optional<std::size_t>>;
    void readAll();
    void readFolder(const std::filesystem::path& folder, const std::string& prefix, int depth);
    void add(DesktopFile file);
    [[nodiscard]] bool haveFoldersChanged() const;
    [[nodiscard]] const DesktopFile* lookUp(const Index& index, const std::string& name) const;

    std::vector<std::filesystem::path> dataFolders_;
    std::string locale_;
    std::vector<Folder> folders_;
    std::vector<DesktopFile> files_;
    // Names in lower case; nothing stands for several.
    Index byID_;
    Index byWindowClass_;
    Index byProgram_;
};

}  // namespace orbinex
