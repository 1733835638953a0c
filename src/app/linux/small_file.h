#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orbinex {

/// The bytes of a file that a person can write by hand, up to 64 KiB. Nothing when there is no such file,
/// or it is larger, not a file (it is not waited for then), or not to be read.
[[nodiscard]] std::optional<std::string> readSmallFile(const std::string& path);

/// Makes the file hold these bytes, whatever it held before; whoever reads it meanwhile sees the one or the
/// other. Makes the folders above it. What went wrong, in words for a person; nothing when all went well.
std::optional<std::string> writeSmallFile(const std::string& path, std::string_view bytes);

}  // namespace orbinex
