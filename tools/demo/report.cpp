#include "report.h"

#include <cstdio>

#include <unistd.h>

namespace orbinex::demo {

namespace {

/// The text on one line, in quotation marks.
std::string quotedText(std::string_view text) {
    std::string result = "“";
    for (const char c : text) {
        if (c == '\n') {
            result += "⏎";
        } else if (c == '\t') {
            result += "⇥";
        } else {
            result.push_back(c);
        }
    }
    return result + "”";
}

/// Up one line, and that line empty.
constexpr const char* overTheLast = "\033[A\033[2K";

}  // namespace

void Report::print(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
    isPictureLast_ = false;
}

void Report::chapter(std::string_view title) {
    print("\n" + std::string(title));
}

void Report::says(std::string_view line) {
    print("    orbinex   " + std::string(line));
}

void Report::shows(std::string_view picture) {
    const bool isInPlace = isPictureLast_ && ::isatty(STDOUT_FILENO) != 0;
    print((isInPlace ? overTheLast : "") + ("    phone     " + std::string(picture)));
    isPictureLast_ = true;
}

void Report::step(std::string_view name, std::string_view expected, std::string_view readBack) {
    const bool isPassed = expected == readBack;
    ++(isPassed ? passed_ : failed_);
    if (isPassed) {
        print("    ok        " + std::string(name) + ": " + quotedText(readBack));
    } else {
        print("    FAILED    " + std::string(name) + ": expected " + quotedText(expected) + ", read back " +
              quotedText(readBack));
    }
}

void Report::summary(std::string_view picture) {
    print("\npicture: " + std::string(picture));
    print("demo: " + std::to_string(passed_) + " steps passed, " + std::to_string(failed_) + " failed");
}

}  // namespace orbinex::demo
