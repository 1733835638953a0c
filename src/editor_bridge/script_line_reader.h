#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/bytes.h"

namespace orbinex {

/// Makes lines of what arrives in reads that are cut anywhere. Allocates nothing once it has seen reads of
/// that size.
class ScriptLineReader {
  public:
    /// Far more than any line of the script needs, in bytes. A longer line is dropped whole, up to its end.
    static constexpr std::size_t longestLine = 65'536;

    /// Calls `onLine` with every line that this read ends, without white space at its ends. The line is valid
    /// during the call. After a clear() in it the rest of the read is not looked at. A character that is cut
    /// off waits for the next read; a read that is not UTF-8 is dropped, with the line that it is part of.
    template <class OnLine>
    void take(ByteView read, OnLine onLine) {
        if (read.empty()) return;
        const auto text = decoded(read);
        if (!text) return skip(read.back() == '\n');
        const auto era = era_;
        std::string_view piece = *text;
        for (auto end = piece.find('\n'); end != std::string_view::npos && era == era_;
             end = piece.find('\n')) {
            const auto line = finished(piece.substr(0, end));
            piece.remove_prefix(end + 1);
            if (line) onLine(*line);
        }
        if (era == era_) keep(piece);
    }
    void clear();

  private:
    std::optional<std::string_view> decoded(ByteView read);
    /// The line that has begun is dropped.
    void skip(bool endsIt);
    std::optional<std::string_view> finished(std::string_view end);
    void keep(std::string_view piece);

    /// The beginning of a character, at most 3 bytes.
    std::string cut_;
    std::string text_;
    std::string unfinished_;
    /// Complete, while it is looked at.
    std::string line_;
    /// The line that has begun is dropped up to its end.
    bool isSkipping_ = false;
    /// Counts the calls of clear().
    unsigned era_ = 0;
};

}  // namespace orbinex
