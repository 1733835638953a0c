#include "screen_probe.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <span>

#include <xcb/xcb.h>

#include "event_loop.h"
#include "xcb_reply.h"

namespace orbinex::demo {

namespace {

constexpr std::uint32_t colourMask = 0xffffff;
constexpr std::uint32_t propertyLimit = 1024;  // in units of four bytes

}  // namespace

ScreenProbe::ScreenProbe(const std::string& display, int left)
    : connection_(xcb_connect(display.c_str(), nullptr)), left_(left) {
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        throw Ended{"the display " + display + " cannot be opened"};
    }
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    root_ = screen->root;
    width_ = screen->width_in_pixels;
    height_ = screen->height_in_pixels;
}

ScreenProbe::~ScreenProbe() {
    xcb_disconnect(connection_);
}

ScreenProbe::Pointer ScreenProbe::pointer() const {
    const auto reply =
        adopt(xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, root_), nullptr));
    return reply ? Pointer{reply->root_x, reply->root_y} : Pointer{};
}

std::string ScreenProbe::buttonsHeld() const {
    const auto reply =
        adopt(xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, root_), nullptr));
    if (!reply) return "unknown";
    std::string held;
    const auto add = [&](unsigned mask, const char* name) {
        if ((reply->mask & mask) != 0) held += (held.empty() ? "" : ", ") + std::string(name);
    };
    add(XCB_BUTTON_MASK_1, "left");
    add(XCB_BUTTON_MASK_2, "middle");
    add(XCB_BUTTON_MASK_3, "right");
    return held.empty() ? "none" : held;
}

std::string ScreenProbe::keysHeld() const {
    const auto keymap = adopt(xcb_query_keymap_reply(connection_, xcb_query_keymap(connection_), nullptr));
    const auto pointer =
        adopt(xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, root_), nullptr));
    if (!keymap || !pointer) return "unknown";
    int count = 0;
    for (const std::uint8_t byte : keymap->keys) count += std::popcount(byte);
    std::string held = std::to_string(count) + (count == 1 ? " key" : " keys");
    const auto add = [&](unsigned mask, const char* name) {
        if ((pointer->mask & mask) != 0) held += std::string(" with ") + name;
    };
    add(XCB_MOD_MASK_SHIFT, "shift");
    add(XCB_MOD_MASK_CONTROL, "control");
    add(XCB_MOD_MASK_1, "alt");
    return held == "0 keys" ? "none" : held;
}

std::uint32_t ScreenProbe::atom(const char* name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const auto reply = adopt(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : std::uint32_t{XCB_ATOM_NONE};
}

std::string ScreenProbe::property(std::uint32_t window, std::uint32_t name) const {
    const auto cookie =
        xcb_get_property(connection_, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, propertyLimit);
    const auto reply = adopt(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

bool ScreenProbe::hasWindowManager() const {
    return !property(root_, atom("_NET_SUPPORTING_WM_CHECK")).empty();
}

std::string ScreenProbe::activeWindow() const {
    const std::string value = property(root_, atom("_NET_ACTIVE_WINDOW"));
    std::uint32_t window = XCB_WINDOW_NONE;
    if (value.size() >= sizeof window) std::memcpy(&window, value.data(), sizeof window);
    if (window == XCB_WINDOW_NONE) return "none";
    // The instance and the class, each with a zero at its end.
    const std::string names = property(window, XCB_ATOM_WM_CLASS);
    const auto end = names.find('\0');
    return end == std::string::npos ? "unknown" : std::string(names.c_str() + end + 1);
}

int ScreenProbe::popups() const {
    const auto tree = adopt(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr));
    if (!tree) return 0;
    const std::span children(xcb_query_tree_children(tree.get()),
                             static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    return static_cast<int>(std::ranges::count_if(children, [&](xcb_window_t window) {
        const auto attributes = adopt(xcb_get_window_attributes_reply(
            connection_, xcb_get_window_attributes(connection_, window), nullptr));
        return attributes && attributes->override_redirect != 0 &&
               attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
               !property(window, XCB_ATOM_WM_CLASS).empty();
    }));
}

std::vector<std::uint32_t> ScreenProbe::pixels(const Box& box) const {
    const auto cookie =
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, static_cast<std::int16_t>(box.x),
                      static_cast<std::int16_t>(box.y), static_cast<std::uint16_t>(box.width),
                      static_cast<std::uint16_t>(box.height), ~0U);
    const auto reply = adopt(xcb_get_image_reply(connection_, cookie, nullptr));
    std::vector<std::uint32_t> result(static_cast<std::size_t>(box.width) *
                                      static_cast<std::size_t>(box.height));
    const std::size_t size = result.size() * sizeof result[0];
    // 24 and 32 bit screens give four bytes a pixel; others show nothing that we look for.
    if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) != size) return {};
    std::memcpy(result.data(), xcb_get_image_data(reply.get()), size);
    for (auto& pixel : result) pixel &= colourMask;
    return result;
}

std::optional<Box> ScreenProbe::find(std::uint32_t colour, int shortestRun) const {
    const int looked = width_ - left_;
    const auto image = pixels({left_, 0, looked, height_});
    int left = width_;
    int right = -1;
    int top = height_;
    int bottom = -1;
    for (auto row = image.begin(); row != image.end(); row += looked) {
        const auto end = row + looked;
        for (auto from = std::find(row, end, colour); from != end;) {
            const auto to = std::find_if(from, end, [&](std::uint32_t pixel) { return pixel != colour; });
            if (to - from >= shortestRun) {
                const int y = static_cast<int>(row - image.begin()) / looked;
                left = std::min(left, left_ + static_cast<int>(from - row));
                right = std::max(right, left_ + static_cast<int>(to - row) - 1);
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
            from = std::find(to, end, colour);
        }
    }
    if (right < 0) return std::nullopt;
    return Box{left, top, right - left + 1, bottom - top + 1};
}

}  // namespace orbinex::demo
