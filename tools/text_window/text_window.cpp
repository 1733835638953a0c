#include "text_window/text_window.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace orbinex {

namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

constexpr int lineHeight = 18;
constexpr std::int16_t margin = 16;
constexpr int firstLine = 28;
/// The rest of a line is drawn over.
constexpr std::size_t columns = 120;

}  // namespace

TextWindow::TextWindow(const Look& look) : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        throw std::runtime_error("no display");
    }
    const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    window_ = xcb_generate_id(connection_);
    const std::array<std::uint32_t, 2> values{look.background, XCB_EVENT_MASK_KEY_PRESS |
                                                                   XCB_EVENT_MASK_EXPOSURE |
                                                                   XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, look.x, look.y, look.width,
                      look.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());
    setText(XCB_ATOM_WM_NAME, look.title);
    const std::string end(1, '\0');
    setText(XCB_ATOM_WM_CLASS, look.name + end + look.name + end);
    // Where it was asked to be: user's position, in the size hints' flags.
    const std::array<std::uint32_t, 18> hints{1, static_cast<std::uint32_t>(look.x),
                                              static_cast<std::uint32_t>(look.y)};
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, hints.size(), hints.data());
    const xcb_font_t font = xcb_generate_id(connection_);
    xcb_open_font(connection_, font, 5, "fixed");
    pen_ = xcb_generate_id(connection_);
    const std::array<std::uint32_t, 3> pen{textColour, look.background, font};
    xcb_create_gc(connection_, pen_, window_, XCB_GC_FOREGROUND | XCB_GC_BACKGROUND | XCB_GC_FONT,
                  pen.data());
    xcb_map_window(connection_, window_);
    xcb_flush(connection_);
}

TextWindow::~TextWindow() {
    xcb_disconnect(connection_);
}

bool TextWindow::isOpen() const {
    return xcb_connection_has_error(connection_) == 0;
}

int TextWindow::descriptor() const {
    return xcb_get_file_descriptor(connection_);
}

void TextWindow::handle(const std::function<void(std::uint32_t)>& press) {
    while (const std::unique_ptr<xcb_generic_event_t, Free> event{xcb_poll_for_event(connection_)}) {
        constexpr unsigned sentMask = 0x7f;
        if ((event->response_type & sentMask) == XCB_KEY_PRESS)
            press(symbolOf(reinterpret_cast<const xcb_key_press_event_t*>(event.get())->detail));
    }
}

void TextWindow::draw(int line, std::string text) {
    text.resize(columns, ' ');
    xcb_image_text_8(connection_, static_cast<std::uint8_t>(text.size()), window_, pen_, margin,
                     static_cast<std::int16_t>(firstLine + line * lineHeight), text.c_str());
}

void TextWindow::flush() {
    xcb_flush(connection_);
}

void TextWindow::setText(xcb_atom_t property, const std::string& text) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
}

std::uint32_t TextWindow::symbolOf(xcb_keycode_t key) {
    const std::unique_ptr<xcb_get_keyboard_mapping_reply_t, Free> mapping{
        xcb_get_keyboard_mapping_reply(connection_, xcb_get_keyboard_mapping(connection_, key, 1), nullptr)};
    return mapping && mapping->keysyms_per_keycode > 0 ? *xcb_get_keyboard_mapping_keysyms(mapping.get()) : 0;
}

}  // namespace orbinex
