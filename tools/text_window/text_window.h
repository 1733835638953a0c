#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <xcb/xcb.h>

namespace orbinex {

/// A window of lines of text on the X server, as the stand-ins for other programs have one. What window
/// managers and task bars are told of it is given.
class TextWindow {
  public:
    struct Look {
        std::string title;
        /// Class and instance of the window.
        std::string name;
        /// In pixels, from the screen's corner.
        std::int16_t x = 0;
        std::int16_t y = 0;
        std::uint16_t width = 760;
        std::uint16_t height = 330;
        /// 0xRRGGBB
        std::uint32_t background = 0;
    };
    static constexpr std::uint32_t textColour = 0xd8dee9;

    /// On the display of the environment. Throws std::runtime_error without one.
    explicit TextWindow(const Look& look);
    TextWindow(const TextWindow&) = delete;
    TextWindow& operator=(const TextWindow&) = delete;
    ~TextWindow();

    /// False when the display has gone.
    [[nodiscard]] bool isOpen() const;
    /// Readable when there is something to handle.
    [[nodiscard]] int descriptor() const;
    /// Calls `press` with the symbol (of the keyboard's first level) of every key that was pressed.
    void handle(const std::function<void(std::uint32_t)>& press);
    /// Replaces a line, from 0; Latin-1.
    void draw(int line, std::string text);
    void flush();

  private:
    void setText(xcb_atom_t property, const std::string& text);
    [[nodiscard]] std::uint32_t symbolOf(xcb_keycode_t key);

    xcb_connection_t* connection_;
    xcb_window_t window_ = 0;
    xcb_gcontext_t pen_ = 0;
};

}  // namespace orbinex
