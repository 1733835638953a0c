#include "input/x11/x_client.h"

#include <array>
#include <clocale>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XTest.h>

namespace orbinex::test {

namespace {

using Type = XClient::Event::Type;

constexpr unsigned long doubleClickMilliseconds = 400;
constexpr int doubleClickDistance = 5;

}  // namespace

/// The input method that is built into Xlib: it applies dead keys and compose sequences.
struct XClient::Compose {
    Compose(Display* display, Window window) : method(XOpenIM(display, nullptr, nullptr, nullptr)) {
        if (!method) throw std::runtime_error("no input method");
        context = XCreateIC(method, XNInputStyle, XIMPreeditNothing | XIMStatusNothing, XNClientWindow,
                            window, nullptr);
    }
    Compose(const Compose&) = delete;
    Compose& operator=(const Compose&) = delete;
    ~Compose() {
        XDestroyIC(context);
        XCloseIM(method);
    }

    XIM method;
    XIC context;
};

XClient::XClient(const std::string& display) : display_(XOpenDisplay(display.c_str())) {
    if (!display_) throw std::runtime_error("cannot connect to " + display);
    std::setlocale(LC_CTYPE, "C.UTF-8");
    XSetLocaleModifiers("@im=none");
    XSetWindowAttributes attributes{};
    attributes.override_redirect = True;
    const int screen = DefaultScreen(display_);
    window_ = XCreateWindow(display_, DefaultRootWindow(display_), 0, 0,
                            static_cast<unsigned>(DisplayWidth(display_, screen)),
                            static_cast<unsigned>(DisplayHeight(display_, screen)), 0, CopyFromParent,
                            InputOutput, CopyFromParent, CWOverrideRedirect, &attributes);
    XSelectInput(display_, window_,
                 KeyPressMask | KeyReleaseMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask |
                     StructureNotifyMask);
    XMapWindow(display_, window_);
    for (XEvent event;
         XWindowEvent(display_, window_, StructureNotifyMask, &event), event.type != MapNotify;) {
    }
    XSetInputFocus(display_, window_, RevertToParent, CurrentTime);
    compose_ = std::make_unique<Compose>(display_, window_);
    XSync(display_, False);
}

XClient::~XClient() {
    compose_.reset();
    XCloseDisplay(display_);
}

void XClient::handleEvents() {
    XSync(display_, False);
    while (XPending(display_) > 0) {
        XEvent event;
        XNextEvent(display_, &event);
        Event seen;
        switch (event.type) {
            case MappingNotify:
                XRefreshKeyboardMapping(&event.xmapping);
                seen.type = Type::mapping;
                break;
            case KeyPress:
            case KeyRelease: {
                seen.type = event.type == KeyPress ? Type::keyPress : Type::keyRelease;
                seen.detail = event.xkey.keycode;
                seen.state = event.xkey.state;
                seen.time = event.xkey.time;
                // A compose sequence that completes comes as a press without a keycode.
                if (XFilterEvent(&event, window_) != False) break;
                if (event.type == KeyPress) {
                    std::array<char, 64> buffer{};
                    KeySym keysym = NoSymbol;
                    const int size = Xutf8LookupString(compose_->context, &event.xkey, buffer.data(),
                                                       static_cast<int>(buffer.size()), &keysym, nullptr);
                    seen.text = std::string(buffer.data(), static_cast<std::size_t>(size));
                    seen.keysym = keysym;
                }
                break;
            }
            case ButtonPress:
            case ButtonRelease:
                seen.type = event.type == ButtonPress ? Type::buttonPress : Type::buttonRelease;
                seen.detail = event.xbutton.button;
                seen.state = event.xbutton.state;
                seen.x = event.xbutton.x_root;
                seen.y = event.xbutton.y_root;
                seen.time = event.xbutton.time;
                if (event.type == ButtonPress) noteClick(seen);
                break;
            case MotionNotify:
                seen.type = Type::motion;
                seen.state = event.xmotion.state;
                seen.x = event.xmotion.x_root;
                seen.y = event.xmotion.y_root;
                seen.time = event.xmotion.time;
                break;
            default: continue;
        }
        events_.push_back(seen);
    }
}

void XClient::noteClick(const Event& event) {
    const bool goesOn = clickCount_ > 0 && event.detail == lastPress_.detail &&
                        event.time - lastPress_.time < doubleClickMilliseconds &&
                        std::abs(event.x - lastPress_.x) <= doubleClickDistance &&
                        std::abs(event.y - lastPress_.y) <= doubleClickDistance;
    clickCount_ = goesOn ? clickCount_ + 1 : 1;
    lastPress_ = event;
}

std::vector<XClient::Event> XClient::takeEvents() {
    handleEvents();
    return std::exchange(events_, {});
}

std::string XClient::takeText() {
    std::string text;
    for (const Event& event : takeEvents()) {
        if (event.type == Type::keyPress) text += event.text;
    }
    return text;
}

std::vector<unsigned> XClient::keysDown() const {
    std::array<char, 32> keys{};
    XQueryKeymap(display_, keys.data());
    std::vector<unsigned> down;
    for (unsigned code = 0; code < 256; ++code) {
        if ((static_cast<unsigned char>(keys[code / 8]) >> (code % 8) & 1) != 0) down.push_back(code);
    }
    return down;
}

std::pair<int, int> XClient::pointer() const {
    Window window = None;
    int x = 0;
    int y = 0;
    int number = 0;
    unsigned mask = 0;
    XQueryPointer(display_, DefaultRootWindow(display_), &window, &window, &x, &y, &number, &number, &mask);
    return {x, y};
}

unsigned XClient::buttonsDown() const {
    Window window = None;
    int number = 0;
    unsigned mask = 0;
    XQueryPointer(display_, DefaultRootWindow(display_), &window, &window, &number, &number, &number, &number,
                  &mask);
    return mask & (Button1Mask | Button2Mask | Button3Mask | Button4Mask | Button5Mask);
}

unsigned XClient::modifierState() const {
    XkbStateRec state{};
    XkbGetState(display_, XkbUseCoreKbd, &state);
    return state.base_mods | static_cast<unsigned>(state.latched_mods) << 8U |
           static_cast<unsigned>(state.locked_mods) << 16U;
}

std::string XClient::keyboardMap() const {
    std::string map;
    int first = 0;
    int last = 0;
    int width = 0;
    XDisplayKeycodes(display_, &first, &last);
    KeySym* const symbols =
        XGetKeyboardMapping(display_, static_cast<KeyCode>(first), last - first + 1, &width);
    for (int i = 0; i < (last - first + 1) * width; ++i) {
        map += std::to_string(symbols[i]) + ((i + 1) % width == 0 ? '\n' : ' ');
    }
    XFree(symbols);
    XModifierKeymap* const modifiers = XGetModifierMapping(display_);
    for (int i = 0; i < 8 * modifiers->max_keypermod; ++i)
        map += std::to_string(modifiers->modifiermap[i]) + " ";
    XFreeModifiermap(modifiers);
    return map;
}

bool XClient::hasRootProperty(const std::string& name) const {
    const Atom wanted = XInternAtom(display_, name.c_str(), False);
    int count = 0;
    Atom* const properties = XListProperties(display_, DefaultRootWindow(display_), &count);
    bool isThere = false;
    for (int i = 0; i < count; ++i) isThere = isThere || properties[i] == wanted;
    if (properties) XFree(properties);
    return isThere;
}

void XClient::setRootProperty(const std::string& name, const std::vector<unsigned long>& words) const {
    XChangeProperty(display_, DefaultRootWindow(display_), XInternAtom(display_, name.c_str(), False),
                    XA_CARDINAL, 32, PropModeReplace, reinterpret_cast<const unsigned char*>(words.data()),
                    static_cast<int>(words.size()));
    XSync(display_, False);
}

void XClient::beActiveAs(std::string windowClass) const {
    XClassHint names{windowClass.data(), windowClass.data()};
    XSetClassHint(display_, window_, &names);
    setRootProperty("_NET_ACTIVE_WINDOW", {windowClass.empty() ? None : window_});
}

void XClient::key(unsigned keycode, bool isDown) const {
    XTestFakeKeyEvent(display_, keycode, isDown ? True : False, CurrentTime);
    XSync(display_, False);
}

namespace {

/// Lets `work` use the first device of this kind that is not the server's test device, as a person's hand
/// does.
template <class Work>
void withPhysicalDevice(Display* display, int use, Work work) {
    int count = 0;
    XDeviceInfo* const devices = XListInputDevices(display, &count);
    for (int i = 0; i < count; ++i) {
        const bool isTestDevice = std::string_view(devices[i].name).find("XTEST") != std::string_view::npos;
        if (devices[i].use != use || isTestDevice) continue;
        XDevice* const device = XOpenDevice(display, devices[i].id);
        work(device);
        XSync(display, False);
        XCloseDevice(display, device);
        break;
    }
    XFreeDeviceList(devices);
}

}  // namespace

void XClient::physicalKey(unsigned keycode, bool isDown) const {
    withPhysicalDevice(display_, IsXExtensionKeyboard, [&](XDevice* device) {
        XTestFakeDeviceKeyEvent(display_, device, keycode, isDown ? True : False, nullptr, 0, CurrentTime);
    });
}

void XClient::physicalMovePointerBy(int dx, int dy) const {
    withPhysicalDevice(display_, IsXExtensionPointer, [&](XDevice* device) {
        std::array<int, 2> axes{dx, dy};
        XTestFakeDeviceMotionEvent(display_, device, True, 0, axes.data(), 2, CurrentTime);
    });
}

void XClient::movePointerBy(int dx, int dy) const {
    XTestFakeRelativeMotionEvent(display_, dx, dy, CurrentTime);
    XSync(display_, False);
}

void XClient::warpPointerBy(int dx, int dy) const {
    XWarpPointer(display_, None, None, 0, 0, 0, 0, dx, dy);
    XSync(display_, False);
}

void XClient::lockModifiers(unsigned mask, unsigned values) const {
    XkbLockModifiers(display_, XkbUseCoreKbd, mask, values);
    XSync(display_, False);
}

void XClient::latchModifiers(unsigned mask, unsigned values) const {
    XkbLatchModifiers(display_, XkbUseCoreKbd, mask, values);
    XSync(display_, False);
}

void XClient::lockGroup(unsigned group) const {
    XkbLockGroup(display_, XkbUseCoreKbd, group);
    XSync(display_, False);
}

void XClient::holdPressesBack() const {
    XGrabButton(display_, Button1, AnyModifier, DefaultRootWindow(display_), False, ButtonPressMask,
                GrabModeSync, GrabModeAsync, None, None);
    XSync(display_, False);
}

void XClient::letPressesGo() const {
    XAllowEvents(display_, ReplayPointer, CurrentTime);
    XUngrabButton(display_, Button1, AnyModifier, DefaultRootWindow(display_));
    XSync(display_, False);
}

}  // namespace orbinex::test
