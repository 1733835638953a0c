#pragma once

#include <locale>
#include <string>

namespace orbinex::test {

/// While it lives, C and C++ alike write numbers with a decimal comma and grouped digits. The constructor
/// throws std::runtime_error when that cannot be brought about, so that a test of ours cannot pass for that
/// reason.
class CommaLocale {
  public:
    CommaLocale();
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale();

  private:
    std::string previousC_;
    std::locale previous_;
};

}  // namespace orbinex::test
