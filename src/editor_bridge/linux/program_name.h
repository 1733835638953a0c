#pragma once

#include <span>
#include <string_view>

#include <sys/types.h>

namespace orbinex {

/// The file name of what an executable's link in /proc leads to, also of one that has been deleted since.
std::string_view programOfLink(std::string_view link);
/// The file name of a program under Wine by its first argument, a path of either system.
std::string_view programOfArgument(std::string_view argument);

/// The file name of the program that a process runs, under Wine that of the Windows program. `processes` is
/// the open folder /proc. Empty when the process is gone, is the kernel's, or is none of ours to look at. The
/// name lies in the buffer, which bounds the path that it is found in.
std::string_view programName(int processes, pid_t pid, std::span<char> buffer);

}  // namespace orbinex
