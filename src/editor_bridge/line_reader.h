#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/bytes.h"

namespace orbinex {

/// Makes text of what arrives in reads that are cut anywhere. Allocates nothing once it has seen reads of
/// that size.
class ScriptText {
  public:
    /// The characters that are complete with this read; a last one that is cut off waits for the next.
    /// Nothing when the read is not UTF-8: it is dropped whole. Valid until the next call.
    std::optional<std::string_view> decode(ByteView read);
    void clear() { cut_.clear(); }

  private:
    /// The beginning of a character, at most 3 bytes.
    std::string cut_;
    std::string text_;
};

/// Cuts text that arrives in pieces into lines.
class LineSplitter {
  public:
    /// Far more than any line of the script needs, in bytes. A longer line is dropped whole, up to its end.
    static constexpr std::size_t longestLine = 65'536;

    /// Calls `onLine` with every line that this piece ends, without white space at its ends. The line is
    /// valid during the call. After a clear() in it the rest of the piece is not looked at.
    template <class OnLine>
    void take(std::string_view piece, OnLine onLine) {
        const auto era = era_;
        for (auto end = piece.find('\n'); end != std::string_view::npos && era == era_;
             end = piece.find('\n')) {
            const auto line = finished(piece.substr(0, end));
            piece.remove_prefix(end + 1);
            if (line) onLine(*line);
        }
        if (era == era_) keep(piece);
    }
    /// A piece between is missing; the line that it belonged to is dropped. `endsLine` tells whether it ended
    /// with one.
    void skip(bool endsLine);
    void clear();

  private:
    std::optional<std::string_view> finished(std::string_view end);
    void keep(std::string_view piece);

    std::string unfinished_;
    /// Complete, while it is looked at.
    std::string line_;
    /// The line that has begun is dropped up to its end.
    bool isSkipping_ = false;
    /// Counts the calls of clear().
    unsigned era_ = 0;
};

}  // namespace orbinex
