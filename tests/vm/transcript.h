#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace orbinex::test {

/// Whether what a person has been shown is what they were meant to see, line by line. In an expected line an
/// asterisk stands for anything, also for nothing. The failure sets both beside each other: "  " before a
/// line that is as expected, "- " before one that is missing, "+ " before one that nobody expected.
testing::AssertionResult isTranscript(const std::vector<std::string>& seen,
                                      const std::vector<std::string>& expected);

}  // namespace orbinex::test
