#include "editor_bridge/script_line_reader.h"

#include "base/text.h"

namespace orbinex {

std::optional<std::string_view> ScriptLineReader::decoded(ByteView read) {
    text_.swap(cut_);
    cut_.clear();
    text_.append(reinterpret_cast<const char*>(read.data()), read.size());
    const auto valid = validUTF8({reinterpret_cast<const std::uint8_t*>(text_.data()), text_.size()});
    if (valid.length == text_.size()) return text_;
    if (!valid.isCut) return std::nullopt;
    cut_.assign(text_, valid.length);
    return std::string_view(text_).substr(0, valid.length);
}

void ScriptLineReader::skip(bool endsIt) {
    unfinished_.clear();
    isSkipping_ = !endsIt;
}

void ScriptLineReader::clear() {
    cut_.clear();
    unfinished_.clear();
    isSkipping_ = false;
    ++era_;
}

std::optional<std::string_view> ScriptLineReader::finished(std::string_view end) {
    if (isSkipping_ || unfinished_.size() + end.size() > longestLine) {
        skip(true);
        return std::nullopt;
    }
    if (unfinished_.empty()) return trimWhitespace(end);
    line_.swap(unfinished_);
    unfinished_.clear();
    line_.append(end);
    return trimWhitespace(line_);
}

void ScriptLineReader::keep(std::string_view piece) {
    if (isSkipping_) return;
    if (unfinished_.size() + piece.size() > longestLine) return skip(false);
    unfinished_.append(piece);
}

}  // namespace orbinex
