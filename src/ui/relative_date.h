#pragma once

#include <string>

#include "base/date.h"

namespace orbinex {

/// How long ago something was, in words such as "5 minutes ago" and "yesterday". Less than a minute, and
/// what lies ahead because the clock was set back, is "just now". Months have 30 days, years 365.
[[nodiscard]] std::string relativeDate(Date date, Date now);

}  // namespace orbinex
