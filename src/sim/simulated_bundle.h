#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/application_bundle.h"

namespace orbinex {

/// A program on a disk that is a list of paths. Everything that is done is noted, with what it is done to;
/// what stands in `failing` fails.
class SimulatedBundle final : public ApplicationBundle {
  public:
    [[nodiscard]] std::optional<std::string> path() const override { return location; }
    [[nodiscard]] bool hasEnvironmentVariable(const char* name) const override {
        return environment.contains(name);
    }
    [[nodiscard]] std::string applicationsFolder() const override { return folder; }
    [[nodiscard]] std::optional<std::string> userApplicationsFolder() const override { return userFolder; }

    [[nodiscard]] bool makeWritable(const std::string&) override { return !failing.contains("write"); }
    [[nodiscard]] bool exists(const std::string& path) const override { return files.contains(path); }
    bool moveToTrash(const std::string& path) override { return take("trash", path); }
    bool remove(const std::string& path) override { return take("remove", path); }
    bool copy(const std::string& from, const std::string& to) override {
        if (!note("copy", from + " " + to)) return false;
        files.insert(to);
        return true;
    }
    void prepareCopy(const std::string& path) override { note("prepare", path); }
    void launch(const std::string& path, std::function<void(bool)> answer) override {
        note("launch", path);
        launched = std::move(answer);
    }
    void terminate() override { note("terminate", ""); }
    void reveal(const std::string& path) override { note("reveal", path); }
    void openFolder(const std::string& path) override { note("folder", path); }

    std::optional<std::string> location = "/home/ada/Downloads/Orbinex.app";
    std::set<std::string, std::less<>> environment;
    std::string folder = "/Applications";
    std::optional<std::string> userFolder = "/home/ada/Applications";
    std::set<std::string> files;
    /// Of: write, trash, remove, copy.
    std::set<std::string> failing;

    std::vector<std::string> calls;
    /// Answers the launch that is under way.
    std::function<void(bool isRunning)> launched;

  private:
    bool note(const std::string& call, const std::string& path) {
        calls.push_back(path.empty() ? call : call + " " + path);
        return !failing.contains(call);
    }
    bool take(const std::string& call, const std::string& path) {
        if (!note(call, path)) return false;
        files.erase(path);
        return true;
    }
};

}  // namespace orbinex
