#include "ui/relative_date.h"

#include <array>
#include <cmath>

namespace orbinex {

namespace {

struct Unit {
    double seconds;
    const char* one;
    const char* name;
};

constexpr double day = 86'400;
/// The longest first.
constexpr std::array units{
    Unit{365 * day, "last year", "years"}, Unit{30 * day, "last month", "months"},
    Unit{7 * day, "last week", "weeks"},   Unit{day, "yesterday", "days"},
    Unit{3'600, "1 hour ago", "hours"},    Unit{60, "1 minute ago", "minutes"},
};

}  // namespace

std::string relativeDate(Date date, Date now) {
    const double ago = Seconds(now - date).count();
    for (const Unit& unit : units) {
        if (!(ago >= unit.seconds)) continue;
        const double count = std::floor(ago / unit.seconds);
        if (count < 2) return unit.one;
        // A date from a damaged store may lie absurdly far back.
        constexpr double most = 9'999;
        return std::to_string(static_cast<int>(std::fmin(count, most))) + " " + unit.name + " ago";
    }
    return "just now";
}

}  // namespace orbinex
