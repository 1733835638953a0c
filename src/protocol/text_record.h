#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orbinex {

/// Reads a text of fields separated by "|". The text must outlive the reader.
class TextRecordReader {
  public:
    explicit TextRecordReader(std::string_view text);

    /// At least 1.
    [[nodiscard]] std::size_t count() const { return fields_.size(); }
    /// The field as it stands, empty beyond the last one.
    [[nodiscard]] std::string_view text(std::size_t field) const;
    /// The field, or the default when it is empty.
    [[nodiscard]] std::string text(std::size_t field, std::string_view defaultText) const;
    /// True for "1" only.
    [[nodiscard]] bool flag(std::size_t field) const { return text(field) == "1"; }
    [[nodiscard]] std::int64_t integer(std::size_t field, std::int64_t defaultValue) const;
    [[nodiscard]] double decimal(std::size_t field, double defaultValue) const;

  private:
    std::vector<std::string_view> fields_;
};

/// Writes the same, field by field.
class TextRecordWriter {
  public:
    TextRecordWriter();

    /// The text without any "|", cut to its first characters as a reader sees them.
    TextRecordWriter& text(std::string_view value,
                           std::size_t maximumCharacters = std::numeric_limits<std::size_t>::max());
    TextRecordWriter& flag(bool value) { return field(value ? "1" : "0"); }
    TextRecordWriter& integer(std::int64_t value);
    /// With a fixed count of decimals.
    TextRecordWriter& fixed(double value, int decimals);
    /// With as many digits as it takes to read the same number back.
    TextRecordWriter& decimal(double value);

    [[nodiscard]] const std::string& record() const { return text_; }

  private:
    TextRecordWriter& field(std::string_view value);

    std::string text_;
    bool isFirst_ = true;
};

}  // namespace orbinex
