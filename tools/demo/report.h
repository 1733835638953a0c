#pragma once

#include <string>
#include <string_view>

namespace orbinex::demo {

/// Tells the person in front of the terminal what happens, a line each, and counts.
class Report {
  public:
    void chapter(std::string_view title);
    /// What the program itself tells its user.
    void says(std::string_view line);
    /// What the phone shows. Where somebody watches, each picture takes the place of the one before.
    void shows(std::string_view picture);
    /// A step has passed when what was read back is what was expected.
    void step(std::string_view name, std::string_view expected, std::string_view readBack);
    /// The last lines: where the picture is, and the count.
    void summary(std::string_view picture);

    [[nodiscard]] int failures() const { return failed_; }

  private:
    void print(const std::string& line);

    bool isPictureLast_ = false;
    int passed_ = 0;
    int failed_ = 0;
};

}  // namespace orbinex::demo
