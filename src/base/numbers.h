#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orbinex {

/// An optional "+" or "-" and decimal digits, within the signed 64-bit range; anything else is nothing.
std::optional<std::int64_t> parseInteger(std::string_view text);
/// A floating-point number as the C standard's strtod reads it in the "C" locale, whatever the process's
/// locale is (hexadecimal, "inf" and "nan" included; too large becomes infinity, too small zero). Leading
/// white space, anything after the number, and empty text are nothing.
std::optional<double> parseDecimal(std::string_view text);
/// The number with a fixed count of decimals (0 to 9), as printf's "%.Nf" writes it in the "C" locale.
std::string formatFixed(double value, int decimals);
/// The shortest text that parseDecimal reads back as the same number ("nan" for any not-a-number keeps only
/// its sign).
std::string formatDecimal(double value);

}  // namespace orbinex
