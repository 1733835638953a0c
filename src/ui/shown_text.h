#pragma once

#include <string>
#include <string_view>

namespace orbinex {

/// A text from the air as it is shown: on one line, nothing in it that misleads, and without the marks of
/// direction that well-meant names carry, which are not to be seen.
[[nodiscard]] std::string shownText(std::string_view text);
/// The same of an iPhone's name; "iPhone" where nothing of it is left.
[[nodiscard]] std::string shownName(std::string_view name);

}  // namespace orbinex
