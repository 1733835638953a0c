#include "test_phone/line_reader.h"

namespace orbinex::test_phone {

std::vector<std::string> LineReader::take(std::string_view piece) {
    std::vector<std::string> lines;
    for (const char c : piece) {
        if (c != '\n') {
            unfinished_ += c;
            continue;
        }
        if (unfinished_.ends_with('\r')) unfinished_.pop_back();
        lines.push_back(std::move(unfinished_));
        unfinished_.clear();
    }
    return lines;
}

}  // namespace orbinex::test_phone
