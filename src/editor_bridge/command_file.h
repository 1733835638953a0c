#pragma once

#include <string>
#include <string_view>

namespace orbinex {

/// The file that carries commands to the bridge script, a line each. The script takes it whole and deletes
/// it; until then it waits, also when no script runs.
class CommandFile {
  public:
    CommandFile() = default;
    CommandFile(const CommandFile&) = delete;
    CommandFile& operator=(const CommandFile&) = delete;
    virtual ~CommandFile() = default;

    /// What the script is told to read.
    [[nodiscard]] virtual const std::string& path() const = 0;
    /// Adds a line; its end is added here. A line that cannot be written is lost without a word.
    virtual void append(std::string_view line) = 0;
};

}  // namespace orbinex
