#include "support/comma_locale.h"

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace orbinex::test {

CommaLocale::CommaLocale() : previousC_(std::setlocale(LC_ALL, nullptr)) {
#ifdef __SANITIZE_ADDRESS__
    // glibc does not free its copy of LOCPATH.
    const __lsan::ScopedDisabler disabler;
#endif
    ::setenv("LOCPATH", ORBINEX_TEST_LOCALES, 1);
    previous_ = std::locale::global(std::locale("de_DE.UTF-8"));  // Sets the C locale too.

    std::array<char, 16> printed{};
    std::snprintf(printed.data(), printed.size(), "%.1f", 1.5);
    std::ostringstream streamed;
    streamed << 1234.5;
    if (std::string(printed.data()) != "1,5" || streamed.str() != "1.234,5") {
        throw std::runtime_error("no locale with a decimal comma");
    }
}

CommaLocale::~CommaLocale() {
    std::locale::global(previous_);
    std::setlocale(LC_ALL, previousC_.c_str());
    ::unsetenv("LOCPATH");
}

}  // namespace orbinex::test
