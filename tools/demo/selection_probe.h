#pragma once

#include <cstdint>
#include <string>

struct xcb_connection_t;

namespace orbinex::demo {

/// Reads X selections as another program would that is told to paste.
class SelectionProbe {
  public:
    /// Throws Ended when the display cannot be opened.
    explicit SelectionProbe(const std::string& display);
    ~SelectionProbe();
    SelectionProbe(const SelectionProbe&) = delete;
    SelectionProbe& operator=(const SelectionProbe&) = delete;

    /// What is selected; empty when nothing is, or when its owner does not answer within half a second.
    [[nodiscard]] std::string selected() const { return read("PRIMARY"); }
    /// What was copied last, likewise.
    [[nodiscard]] std::string copied() const { return read("CLIPBOARD"); }

  private:
    [[nodiscard]] std::string read(const char* selection) const;
    [[nodiscard]] bool awaitAnswer(std::uint32_t selection) const;
    [[nodiscard]] std::uint32_t atom(const char* name) const;

    xcb_connection_t* connection_;
    std::uint32_t window_ = 0;
    std::uint32_t property_ = 0;
    std::uint32_t utf8_ = 0;
};

}  // namespace orbinex::demo
