#pragma once

#include <string>
#include <string_view>

namespace orbinex {

/// What an application's desktop file says of it; texts are valid UTF-8 and of bounded length.
struct DesktopFile {
    /// By the rules for desktop files, without ".desktop".
    std::string id;
    std::string name;
    /// The class that its windows announce; often empty.
    std::string windowClass;
    /// The file name of the program that it starts; empty when that cannot be told.
    std::string program;
    /// False for links and folders, and for what is to be taken as deleted.
    bool isApplication = false;
};

/// Reads all but the id. `locale` such as "de_DE.UTF-8" chooses the name's language. What is missing or
/// malformed stays empty; any bytes will do.
DesktopFile parseDesktopFile(std::string_view text, std::string_view locale);

}  // namespace orbinex
