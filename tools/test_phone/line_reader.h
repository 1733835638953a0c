#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orbinex::test_phone {

/// Cuts what arrives in pieces into lines.
class LineReader {
  public:
    /// The lines that this piece ends, without "\n" or "\r\n".
    std::vector<std::string> take(std::string_view piece);
    /// A last line without an end; empty when there is none.
    [[nodiscard]] const std::string& unfinished() const { return unfinished_; }

  private:
    std::string unfinished_;
};

}  // namespace orbinex::test_phone
