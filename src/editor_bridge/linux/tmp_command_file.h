#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <sys/stat.h>

#include "editor_bridge/command_file.h"

namespace orbinex {

/// A command file in a folder where everybody may create files. It is used only if it is a regular file of
/// this user, with no other name and no rights for others; whatever else stands in its place is left as it
/// is, and the line is lost.
///
/// The reader takes the file by renaming or removing it, at any moment. A line may then reach it twice, once
/// at the end of the file that it took, perhaps without its line feed, and once, whole, at the start of the
/// next; never later than a line that was added after it. Main thread only.
class TmpCommandFile final : public CommandFile {
  public:
    /// Bytes that wait for a reader. A file that would grow beyond begins anew: commands that nobody has read
    /// for so long are worth nothing.
    static constexpr std::size_t mostWaiting = 1024UL * 1024;

    explicit TmpCommandFile(std::string path) : path_(std::move(path)) {}

    [[nodiscard]] const std::string& path() const override { return path_; }
    /// The line is cut at the first line feed, carriage return or NUL. Nothing is added when none of it is
    /// left, or when it alone is longer than may wait.
    void append(std::string_view line) override;

  private:
    enum class Result {
        done,    ///< added, or lost
        absent,  ///< there is no file, another one has come, or it was taken meanwhile
    };
    [[nodiscard]] Result addToFile(std::string_view bytes) const;
    [[nodiscard]] Result addToNewFile(std::string_view bytes) const;
    /// `status` is what the file was before.
    [[nodiscard]] Result write(int file, const struct stat& status, std::string_view bytes) const;

    std::string path_;
};

}  // namespace orbinex
