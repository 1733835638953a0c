#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace orbinex::demo {

/// A rectangle of pixels.
struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const Box&, const Box&) = default;
};

/// Looks at an X server from outside, through a connection of its own: what it tells is what the server
/// knows, not what the program believes. A server that has gone shows nothing.
class ScreenProbe {
  public:
    /// Colours are looked for right of `left` only, as left of it stands what could show any. Throws Ended
    /// when the display cannot be opened.
    explicit ScreenProbe(const std::string& display, int left = 0);
    ~ScreenProbe();
    ScreenProbe(const ScreenProbe&) = delete;
    ScreenProbe& operator=(const ScreenProbe&) = delete;

    struct Pointer {
        int x = 0;
        int y = 0;
    };
    [[nodiscard]] Pointer pointer() const;
    /// Such as "left" or "left, right"; "none".
    [[nodiscard]] std::string buttonsHeld() const;
    /// Such as "2 keys with shift"; "none".
    [[nodiscard]] std::string keysHeld() const;

    [[nodiscard]] bool hasWindowManager() const;
    /// The class of the window that has the keyboard, such as "Mousepad"; "none".
    [[nodiscard]] std::string activeWindow() const;
    /// Menus and the like that are on the screen.
    [[nodiscard]] int popups() const;

    /// The smallest rectangle that holds every pixel of this colour, 0xRRGGBB. What is shorter than so many
    /// pixels in a row does not count: the edges of letters have many colours.
    [[nodiscard]] std::optional<Box> find(std::uint32_t colour, int shortestRun = 1) const;
    /// The pixels of a rectangle, row by row.
    [[nodiscard]] std::vector<std::uint32_t> pixels(const Box& box) const;
    [[nodiscard]] Box whole() const { return {0, 0, width_, height_}; }

  private:
    [[nodiscard]] std::uint32_t atom(const char* name) const;
    [[nodiscard]] std::string property(std::uint32_t window, std::uint32_t name) const;

    xcb_connection_t* connection_;
    std::uint32_t root_ = 0;
    int left_ = 0;
    int width_ = 0;
    int height_ = 0;
};

}  // namespace orbinex::demo
