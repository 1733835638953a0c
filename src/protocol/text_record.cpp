#include "protocol/text_record.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "base/numbers.h"
#include "base/text.h"

namespace orbinex {

namespace {

constexpr char separator = '|';
/// Most records are shorter, in bytes.
constexpr std::size_t ordinaryLength = 160;

}  // namespace

TextRecordReader::TextRecordReader(std::string_view text) : fields_(split(text, separator)) {}

std::string_view TextRecordReader::text(std::size_t field) const {
    return field < fields_.size() ? fields_[field] : std::string_view();
}

std::string TextRecordReader::text(std::size_t field, std::string_view defaultText) const {
    const std::string_view value = text(field);
    return std::string(value.empty() ? defaultText : value);
}

std::int64_t TextRecordReader::integer(std::size_t field, std::int64_t defaultValue) const {
    return parseInteger(text(field)).value_or(defaultValue);
}

double TextRecordReader::decimal(std::size_t field, double defaultValue) const {
    return parseDecimal(text(field)).value_or(defaultValue);
}

TextRecordWriter::TextRecordWriter() {
    text_.reserve(ordinaryLength);
}

TextRecordWriter& TextRecordWriter::text(std::string_view value, std::size_t maximumCharacters) {
    if (value.find(separator) == std::string_view::npos)
        return field(firstCharacters(value, maximumCharacters));
    std::string kept(value);
    std::erase(kept, separator);
    return field(firstCharacters(kept, maximumCharacters));
}

TextRecordWriter& TextRecordWriter::integer(std::int64_t value) {
    std::array<char, 20> digits;
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    return field({digits.data(), end});
}

TextRecordWriter& TextRecordWriter::fixed(double value, int decimals) {
    return field(formatFixed(value, decimals));
}

TextRecordWriter& TextRecordWriter::decimal(double value) {
    return field(formatDecimal(value));
}

TextRecordWriter& TextRecordWriter::field(std::string_view value) {
    if (!isFirst_) text_.push_back(separator);
    isFirst_ = false;
    text_.append(value);
    return *this;
}

}  // namespace orbinex
