#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "editor_folder.h"

namespace orbinex::test {

/// Both scripting hosts: on LuaJIT and on Lua 5.1.
std::vector<std::string> scriptHosts();

/// A modelled editor in a folder of its own, for scripts that run a few rounds in no time.
class ScriptRun {
  public:
    explicit ScriptRun(std::string host);
    ScriptRun(const ScriptRun&) = delete;
    ScriptRun& operator=(const ScriptRun&) = delete;
    ~ScriptRun();

    /// Two audio tracks: on the first clips at 86400...86500 and 86600...86700, nothing on the second.
    static EditorSession session();

    /// What the bridge script prints in that many rounds. `before` is run ahead of it.
    std::vector<std::string> run(int rounds, const std::string& before = {});
    void command(const std::string& content) const;

    EditorFolder editor;
    std::filesystem::path commandFile;

  private:
    std::string host_;
};

}  // namespace orbinex::test
