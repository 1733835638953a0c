#pragma once

#include <string>

namespace orbinex {

/// Copies a file or a whole folder, with permissions and symbolic links as they are, to a path where nothing
/// is. The copy is there at once and whole, or not at all: false when anything in it could not be copied, is
/// neither file, folder nor link, or something has come to the target meanwhile.
bool copyWhole(const std::string& from, const std::string& to);

}  // namespace orbinex
