#include "base/line_reader.h"

#include <utility>

namespace orbinex {

std::vector<std::string> LineReader::take(std::string_view piece) {
    std::vector<std::string> lines;
    for (const char c : piece) {
        if (c != '\n') {
            if (unfinished_.size() < longestLine) unfinished_ += c;
            continue;
        }
        if (unfinished_.ends_with('\r')) unfinished_.pop_back();
        lines.push_back(std::exchange(unfinished_, {}));
    }
    return lines;
}

}  // namespace orbinex
