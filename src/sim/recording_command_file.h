#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "editor_bridge/command_file.h"

namespace orbinex {

/// Keeps the lines.
class RecordingCommandFile final : public CommandFile {
  public:
    [[nodiscard]] const std::string& path() const override { return path_; }
    void append(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;

  private:
    std::string path_ = "commands.txt";
};

}  // namespace orbinex
