#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orbinex {

/// Cuts what arrives in pieces into lines.
class LineReader {
  public:
    /// What a line holds beyond this is left out, in bytes.
    static constexpr std::size_t longestLine = 4096;

    /// The lines that this piece ends, without "\n" or "\r\n".
    std::vector<std::string> take(std::string_view piece);
    /// A last line without an end; empty when there is none.
    [[nodiscard]] const std::string& unfinished() const { return unfinished_; }

  private:
    std::string unfinished_;
};

}  // namespace orbinex
