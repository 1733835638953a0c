#pragma once

#include <functional>
#include <optional>
#include <string>

namespace orbinex {

/// Where a program lies and what it is part of. Paths are absolute and without links.
struct ProgramPlace {
    /// What starts it.
    std::string program;
    /// The file or folder that holds all of it, where that can be moved; nothing for a program that belongs
    /// to the system, to a prefix with other programs, or to a build.
    std::optional<std::string> bundle;
    /// The folder that holds bin/ and share/ of this copy.
    std::string root;

    friend bool operator==(const ProgramPlace&, const ProgramPlace&) = default;
};

/// What is known of the running program.
struct ProgramFacts {
    /// The file that is executed.
    std::string executable;
    /// The variables that a self-contained image sets, APPIMAGE (its file) and APPDIR (where it is mounted);
    /// empty without. Programs that were started by another image have them too.
    std::string imageFile;
    std::string imageFolder;
    std::function<bool(const std::string& path)> exists;
};

/// A movable program is an image, or a folder of its own as the archive of a build unpacks to: called orbinex
/// and more, with the program in its bin/ and its desktop file in its share/.
[[nodiscard]] ProgramPlace programPlace(const ProgramFacts& facts);

/// Of this process.
[[nodiscard]] ProgramPlace ownPlace();

}  // namespace orbinex
