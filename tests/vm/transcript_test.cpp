#include "vm/transcript.h"

#include <gtest/gtest.h>

namespace orbinex::test {
namespace {

TEST(VmTranscript, isAsExpectedLineByLine) {
    EXPECT_TRUE(isTranscript({}, {}));
    EXPECT_TRUE(isTranscript({"Searching…", "Reconnecting in 3 s…"}, {"Searching…", "Reconnecting in * s…"}));
    EXPECT_TRUE(isTranscript({"abcabd"}, {"*ab*d*"}));
    EXPECT_FALSE(isTranscript({"Searching…"}, {"Searching"}));
    EXPECT_FALSE(isTranscript({"a", "b"}, {"b", "a"}));
    EXPECT_FALSE(isTranscript({"a"}, {}));
    EXPECT_FALSE(isTranscript({}, {"*"}));
}

TEST(VmTranscript, setsWhatDiffersBesideWhatDoesNot) {
    const auto result = isTranscript({"Starting", "Searching", "Lost", "Connected"},
                                     {"Starting", "Searching", "Connecting", "Connected", "Paused"});
    EXPECT_STREQ(result.message(),
                 "the transcript differs:\n"
                 "      Starting\n"
                 "      Searching\n"
                 "    - Connecting\n"
                 "    + Lost\n"
                 "      Connected\n"
                 "    - Paused");
}

}  // namespace
}  // namespace orbinex::test
