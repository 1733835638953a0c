#pragma once

#include <string>

namespace orbinex {

/// Where the user's files belong. Absolute paths without a slash at the end.
struct UserFolders {
    std::string home;
    /// Settings of programs.
    std::string config;
    /// Data of programs.
    std::string data;

    /// What the environment says; relative paths in it count as unset, as the base directory specification
    /// has it. Without any home it is the root folder.
    static UserFolders fromEnvironment();
};

}  // namespace orbinex
