// The modelled editor as a person sees it: a window of the editor's class, with its transport keys.
//   editor_window FOLDER FPS        its folder, as README.md tells, and the timeline's rate

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include <poll.h>
#include <xcb/xcb.h>

#include "editor_bridge/timecode.h"
#include "editor_folder.h"

namespace {

using namespace orbinex;

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

namespace Symbol {
constexpr xcb_keysym_t space = 0x20;
constexpr xcb_keysym_t left = 0xff51;
constexpr xcb_keysym_t right = 0xff53;
}  // namespace Symbol

constexpr int width = 760;
constexpr int height = 330;
constexpr int lineHeight = 18;
constexpr std::uint32_t backgroundColour = 0x20242c;
constexpr std::uint32_t textColour = 0xd8dee9;
constexpr int redrawMilliseconds = 40;

class EditorWindow {
  public:
    EditorWindow(const char* folder, double fps) : editor_(folder), fps_(fps) {
        connection_ = xcb_connect(nullptr, nullptr);
        if (xcb_connection_has_error(connection_) != 0) throw std::runtime_error("no display");
        const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        window_ = xcb_generate_id(connection_);
        const std::array<std::uint32_t, 2> values{backgroundColour, XCB_EVENT_MASK_KEY_PRESS |
                                                                        XCB_EVENT_MASK_EXPOSURE |
                                                                        XCB_EVENT_MASK_STRUCTURE_NOTIFY};
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 480, 430, width, height,
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());
        setText(XCB_ATOM_WM_NAME, "DaVinci Resolve");
        setText(XCB_ATOM_WM_CLASS, std::string("resolve\0resolve\0", 16));
        // Where it was asked to be: user's position, in the size hints' flags.
        const std::array<std::uint32_t, 18> hints{1, 480, 430};
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
                            XCB_ATOM_WM_SIZE_HINTS, 32, hints.size(), hints.data());
        const xcb_font_t font = xcb_generate_id(connection_);
        xcb_open_font(connection_, font, 5, "fixed");
        pen_ = xcb_generate_id(connection_);
        const std::array<std::uint32_t, 3> pen{textColour, backgroundColour, font};
        xcb_create_gc(connection_, pen_, window_, XCB_GC_FOREGROUND | XCB_GC_BACKGROUND | XCB_GC_FONT,
                      pen.data());
        xcb_map_window(connection_, window_);
        xcb_flush(connection_);
    }
    EditorWindow(const EditorWindow&) = delete;
    EditorWindow& operator=(const EditorWindow&) = delete;
    ~EditorWindow() { xcb_disconnect(connection_); }

    void run() {
        pollfd events{xcb_get_file_descriptor(connection_), POLLIN, 0};
        while (xcb_connection_has_error(connection_) == 0) {
            ::poll(&events, 1, redrawMilliseconds);
            while (const std::unique_ptr<xcb_generic_event_t, Free> event{xcb_poll_for_event(connection_)}) {
                constexpr unsigned sentMask = 0x7f;
                if ((event->response_type & sentMask) == XCB_KEY_PRESS)
                    press(symbolOf(reinterpret_cast<const xcb_key_press_event_t*>(event.get())->detail));
            }
            draw();
        }
    }

  private:
    void setText(xcb_atom_t property, const std::string& text) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    }

    xcb_keysym_t symbolOf(xcb_keycode_t key) {
        const std::unique_ptr<xcb_get_keyboard_mapping_reply_t, Free> mapping{xcb_get_keyboard_mapping_reply(
            connection_, xcb_get_keyboard_mapping(connection_, key, 1), nullptr)};
        return mapping && mapping->keysyms_per_keycode > 0 ? *xcb_get_keyboard_mapping_keysyms(mapping.get())
                                                           : 0;
    }

    void press(xcb_keysym_t symbol) {
        const auto frame = editor_.frame(fps_);
        switch (symbol) {
            case 'l': return play(frame, speed_ == 1 ? 2 : 1);
            case 'j': return play(frame, -1);
            case 'k': return play(frame, 0);
            case Symbol::space: return play(frame, speed_ == 0 ? 1 : 0);
            case Symbol::left: return play(std::max<std::int64_t>(frame - 1, 0), 0);
            case Symbol::right: return play(frame + 1, 0);
            default: return;
        }
    }

    void play(std::int64_t frame, double speed) {
        speed_ = speed;
        editor_.play(frame, speed);
    }

    void drawLine(int line, std::string text) {
        // The rest of the line is drawn over.
        text.resize(120, ' ');
        xcb_image_text_8(connection_, static_cast<std::uint8_t>(text.size()), window_, pen_, 16,
                         static_cast<std::int16_t>(28 + line * lineHeight), text.c_str());
    }

    void draw() {
        constexpr std::size_t shown = 13;
        std::array<char, 8> speed{};
        std::snprintf(speed.data(), speed.size(), "%+.0fx", speed_);
        drawLine(0, framesToTimecode(editor_.frame(fps_), false, fps_) + "   " + speed.data());
        const auto calls = editor_.calls();
        const auto first = calls.size() > shown ? calls.size() - shown : 0;
        for (std::size_t i = 0; i < shown; ++i)
            drawLine(static_cast<int>(i) + 2, first + i < calls.size() ? calls[first + i] : "");
        xcb_flush(connection_);
    }

    EditorFolder editor_;
    double fps_;
    double speed_ = 0;
    xcb_connection_t* connection_ = nullptr;
    xcb_window_t window_ = 0;
    xcb_gcontext_t pen_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: editor_window FOLDER FPS\n", stderr);
        return 2;
    }
    try {
        EditorWindow(argv[1], std::atof(argv[2])).run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "editor_window: %s\n", error.what());
        return 1;
    }
    return 0;
}
