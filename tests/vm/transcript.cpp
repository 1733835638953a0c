#include "vm/transcript.h"

#include <algorithm>
#include <string_view>

namespace orbinex::test {

namespace {

bool matches(std::string_view line, std::string_view expected) {
    const std::size_t star = expected.find('*');
    if (star == std::string_view::npos) return line == expected;
    if (!line.starts_with(expected.substr(0, star))) return false;
    line.remove_prefix(star);
    expected.remove_prefix(star + 1);
    for (std::size_t skipped = 0; skipped <= line.size(); ++skipped) {
        if (matches(line.substr(skipped), expected)) return true;
    }
    return false;
}

}  // namespace

testing::AssertionResult isTranscript(const std::vector<std::string>& seen,
                                      const std::vector<std::string>& expected) {
    // common[i][j] is the length of the longest common part of what follows seen line i and expected line j.
    std::vector<std::vector<int>> common(seen.size() + 1, std::vector<int>(expected.size() + 1, 0));
    for (std::size_t i = seen.size(); i-- > 0;) {
        for (std::size_t j = expected.size(); j-- > 0;) {
            common[i][j] = matches(seen[i], expected[j]) ? common[i + 1][j + 1] + 1
                                                         : std::max(common[i + 1][j], common[i][j + 1]);
        }
    }
    const auto length = static_cast<std::size_t>(common[0][0]);
    if (length == seen.size() && length == expected.size()) return testing::AssertionSuccess();

    auto failure = testing::AssertionFailure() << "the transcript differs:";
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < seen.size() || j < expected.size()) {
        if (i < seen.size() && j < expected.size() && matches(seen[i], expected[j])) {
            failure << "\n      " << seen[i++];
            ++j;
        } else if (j < expected.size() && (i == seen.size() || common[i][j + 1] >= common[i + 1][j])) {
            failure << "\n    - " << expected[j++];
        } else {
            failure << "\n    + " << seen[i++];
        }
    }
    return failure;
}

}  // namespace orbinex::test
