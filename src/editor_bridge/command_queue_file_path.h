#pragma once

#include <cstdint>
#include <string>

namespace orbinex {

/// Where a user's commands wait for the bridge script: one file for each user of the computer.
inline std::string commandQueueFilePath(std::uint32_t userID) {
    return "/tmp/orbinex_resolve_cmd_" + std::to_string(userID) + ".txt";
}

}  // namespace orbinex
