#pragma once

#include <optional>
#include <string_view>

namespace orbinex {

/// What decides whether the person is asked to move the program.
struct RelocationFacts {
    bool isRunUnderTest = false;
    std::string_view bundlePath;
    std::optional<std::string_view> userApplicationsFolder = std::nullopt;
    bool isSuppressed = false;
};

/// The variable that the environment holds where a test host runs the program.
inline constexpr const char* testHostVariable = "XCTestConfigurationFilePath";

/// False for tests, for development builds, where the program lies with the applications already, and when
/// the person does not want to be asked.
[[nodiscard]] bool isMoveOffered(const RelocationFacts& facts);

/// Anywhere below a folder for applications: the system's, or the user's own where there is one.
[[nodiscard]] bool isInApplicationsFolder(std::string_view path,
                                          std::optional<std::string_view> userApplicationsFolder);

/// The path is the folder, or lies below it. By their names alone: links have to be followed before.
[[nodiscard]] bool isIn(std::string_view path, std::string_view folder);

/// The last component of a path; empty when it has none.
[[nodiscard]] std::string_view lastPathComponent(std::string_view path);

}  // namespace orbinex
