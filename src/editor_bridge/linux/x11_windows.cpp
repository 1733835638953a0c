#include "editor_bridge/linux/x11_windows.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

#include <unistd.h>
#include <xcb/xcb.h>

#include "base/text.h"

namespace orbinex {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class Reply>
using Owned = std::unique_ptr<Reply, Free>;

constexpr std::uint32_t maxTextWords = 128;
constexpr std::uint32_t maxTypes = 32;

xcb_get_property_cookie_t ask(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                              std::uint32_t words) {
    return xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, words);
}

/// Nothing when the window has just gone.
Owned<xcb_get_property_reply_t> reply(xcb_connection_t* connection, xcb_get_property_cookie_t cookie) {
    xcb_generic_error_t* error = nullptr;
    Owned<xcb_get_property_reply_t> answer(xcb_get_property_reply(connection, cookie, &error));
    const Owned<xcb_generic_error_t> owned(error);
    return answer;
}

/// Of a property of 32-bit items; empty for any other.
std::span<const std::uint32_t> words(const Owned<xcb_get_property_reply_t>& answer) {
    if (!answer || answer->format != 32) return {};
    return {static_cast<const std::uint32_t*>(xcb_get_property_value(answer.get())), answer->value_len};
}

std::string_view bytes(const Owned<xcb_get_property_reply_t>& answer) {
    if (!answer || answer->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(answer.get())), answer->value_len};
}

std::string text(std::string_view raw) {
    const std::string whole = repairUTF8({reinterpret_cast<const std::uint8_t*>(raw.data()), raw.size()});
    return std::string(trimWhitespace(trimControlCharacters(whole)));
}

}  // namespace

struct X11Windows::Atoms {
    xcb_atom_t clientList = 0;
    xcb_atom_t activeWindow = 0;
    xcb_atom_t pid = 0;
    xcb_atom_t name = 0;
    xcb_atom_t type = 0;
    /// Types of windows that are not an application's.
    std::array<xcb_atom_t, 9> extraordinary{};

    explicit Atoms(xcb_connection_t* connection) {
        static constexpr std::array<std::string_view, 14> names{
            "_NET_CLIENT_LIST",
            "_NET_ACTIVE_WINDOW",
            "_NET_WM_PID",
            "_NET_WM_NAME",
            "_NET_WM_WINDOW_TYPE",
            "_NET_WM_WINDOW_TYPE_DESKTOP",
            "_NET_WM_WINDOW_TYPE_DOCK",
            "_NET_WM_WINDOW_TYPE_TOOLBAR",
            "_NET_WM_WINDOW_TYPE_MENU",
            "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
            "_NET_WM_WINDOW_TYPE_POPUP_MENU",
            "_NET_WM_WINDOW_TYPE_TOOLTIP",
            "_NET_WM_WINDOW_TYPE_NOTIFICATION",
            "_NET_WM_WINDOW_TYPE_COMBO",
        };
        std::array<xcb_intern_atom_cookie_t, names.size()> cookies{};
        for (std::size_t i = 0; i < names.size(); ++i)
            cookies[i] =
                xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(names[i].size()), names[i].data());
        std::array<xcb_atom_t, names.size()> atoms{};
        for (std::size_t i = 0; i < names.size(); ++i) {
            const Owned<xcb_intern_atom_reply_t> answer(
                xcb_intern_atom_reply(connection, cookies[i], nullptr));
            if (answer) atoms[i] = answer->atom;
        }
        clientList = atoms[0];
        activeWindow = atoms[1];
        pid = atoms[2];
        name = atoms[3];
        type = atoms[4];
        std::copy(atoms.begin() + 5, atoms.end(), extraordinary.begin());
    }

    [[nodiscard]] bool isFact(xcb_atom_t atom) const {
        return atom == XCB_ATOM_WM_CLASS || atom == pid || atom == type;
    }
};

void X11Windows::Disconnect::operator()(xcb_connection_t* connection) const {
    xcb_disconnect(connection);
}

X11Windows::X11Windows(const std::string& displayName, std::function<void()> changed)
    : changed_(std::move(changed)) {
    int screen = 0;
    connection_.reset(xcb_connect(displayName.empty() ? nullptr : displayName.c_str(), &screen));
    std::array<char, HOST_NAME_MAX + 1> host{};
    if (::gethostname(host.data(), host.size() - 1) == 0) ownComputer_ = host.data();
    if (xcb_connection_has_error(connection_.get()) != 0) return;

    atoms_ = std::make_unique<Atoms>(connection_.get());
    auto roots = xcb_setup_roots_iterator(xcb_get_setup(connection_.get()));
    for (; screen > 0 && roots.rem > 1; --screen) xcb_screen_next(&roots);
    root_ = roots.data->root;
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_.get(), root_, XCB_CW_EVENT_MASK, &events);
    watch_.emplace(xcb_get_file_descriptor(connection_.get()), [this] { processEvents(); });
    readWindows();
    while (takeEvents()) readWindows();
}

X11Windows::~X11Windows() = default;

void X11Windows::processEvents() {
    bool hasChanged = false;
    // Waiting for answers brings events along that do not make the connection readable again.
    while (takeEvents()) {
        readWindows();
        hasChanged = true;
    }
    if (xcb_connection_has_error(connection_.get()) != 0) {
        watch_.reset();
        order_.clear();
        facts_.clear();
        active_ = 0;
        hasChanged = true;
    }
    if (hasChanged) changed_();
}

bool X11Windows::takeEvents() {
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
        const int type = event->response_type & 0x7f;
        if (type == XCB_PROPERTY_NOTIFY) {
            const auto* property = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
            if (property->window == root_)
                isListStale_ |=
                    property->atom == atoms_->clientList || property->atom == atoms_->activeWindow;
            else if (atoms_->isFact(property->atom))
                stale_.push_back(property->window);
        } else if (type == XCB_DESTROY_NOTIFY) {
            stale_.push_back(reinterpret_cast<const xcb_destroy_notify_event_t*>(event.get())->window);
        }
    }
    return isListStale_ || !stale_.empty();
}

void X11Windows::readWindows() {
    auto* const connection = connection_.get();
    isListStale_ = false;
    const auto list = ask(connection, root_, atoms_->clientList, maxWindows);
    const auto active = ask(connection, root_, atoms_->activeWindow, 1);
    const auto listed = reply(connection, list);
    const auto front = reply(connection, active);
    const auto windows = words(listed);
    order_.assign(windows.begin(), windows.end());
    active_ = words(front).empty() ? 0 : words(front).front();
    if (active_ != 0 && std::ranges::find(order_, active_) == order_.end()) order_.push_back(active_);

    for (const Window window : std::exchange(stale_, {})) facts_.erase(window);
    std::vector<Window> unknown;
    std::ranges::copy_if(order_, std::back_inserter(unknown),
                         [this](Window window) { return !facts_.contains(window); });
    readFacts(unknown);

    // What has gone in the meantime, or came twice.
    std::map<Window, WindowFacts> kept;
    std::erase_if(order_, [&](Window window) {
        auto node = facts_.extract(window);
        return node.empty() || !kept.insert(std::move(node)).inserted;
    });
    facts_ = std::move(kept);
    if (!facts_.contains(active_)) active_ = 0;
}

/// Asks all questions before it waits for the first answer.
void X11Windows::readFacts(const std::vector<Window>& windows) {
    auto* const connection = connection_.get();
    enum Question { windowClass, pid, type, name, oldName, computer, count };
    const std::array<std::pair<xcb_atom_t, std::uint32_t>, count> questions{{
        {XCB_ATOM_WM_CLASS, maxTextWords},
        {atoms_->pid, 1},
        {atoms_->type, maxTypes},
        {atoms_->name, maxTextWords},
        {XCB_ATOM_WM_NAME, maxTextWords},
        {XCB_ATOM_WM_CLIENT_MACHINE, maxTextWords},
    }};
    std::vector<std::array<xcb_get_property_cookie_t, count>> cookies(windows.size());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    for (std::size_t i = 0; i < windows.size(); ++i) {
        // First, so that no later change of what is read here goes unnoticed.
        xcb_change_window_attributes(connection, windows[i], XCB_CW_EVENT_MASK, &events);
        for (std::size_t q = 0; q < count; ++q)
            cookies[i][q] = ask(connection, windows[i], questions[q].first, questions[q].second);
    }
    for (std::size_t i = 0; i < windows.size(); ++i) {
        std::array<Owned<xcb_get_property_reply_t>, count> answers;
        for (std::size_t q = 0; q < count; ++q) answers[q] = reply(connection, cookies[i][q]);
        if (std::ranges::any_of(answers, [](const auto& answer) { return !answer; })) continue;

        WindowFacts facts;
        const auto names = bytes(answers[windowClass]);
        const auto end = std::min(names.find('\0'), names.size());
        facts.instance = text(names.substr(0, end));
        if (end < names.size()) {
            const auto rest = names.substr(end + 1);
            facts.windowClass = text(rest.substr(0, rest.find('\0')));
        }
        const auto title = bytes(answers[name]);
        facts.title = text(title.empty() ? bytes(answers[oldName]) : title);
        const auto host = bytes(answers[computer]);
        const bool isOurs = host.empty() || ownComputer_ == host.substr(0, host.find('\0'));
        const auto number = words(answers[pid]);
        if (isOurs && !number.empty() && number.front() <= INT_MAX)
            facts.pid = static_cast<pid_t>(number.front());
        const auto types = words(answers[type]);
        // They are in the order of preference, and the first may be one that only its own desktop knows.
        facts.isOrdinary = std::ranges::find_first_of(types, atoms_->extraordinary) == types.end();
        facts_[windows[i]] = std::move(facts);
    }
}

}  // namespace orbinex
