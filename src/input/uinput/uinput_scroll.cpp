#include "input/uinput/uinput_scroll.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <linux/uinput.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace orbinex {

namespace {

struct Capability {
    unsigned long request;
    int value;
};
// What has wheels but no motion and no buttons, udev does not take for a mouse, and libinput then leaves it
// alone.
constexpr Capability capabilities[] = {
    {UI_SET_EVBIT, EV_KEY},
    {UI_SET_KEYBIT, BTN_LEFT},
    {UI_SET_KEYBIT, BTN_RIGHT},
    {UI_SET_KEYBIT, BTN_MIDDLE},
    {UI_SET_EVBIT, EV_REL},
    {UI_SET_RELBIT, REL_X},
    {UI_SET_RELBIT, REL_Y},
    {UI_SET_RELBIT, REL_WHEEL},
    {UI_SET_RELBIT, REL_HWHEEL},
    {UI_SET_RELBIT, REL_WHEEL_HI_RES},
    {UI_SET_RELBIT, REL_HWHEEL_HI_RES},
};

bool create(int fd, const std::string& name) {
    uinput_setup setup{};
    setup.id.bustype = BUS_VIRTUAL;
    setup.id.version = 1;
    std::ranges::copy_n(
        name.begin(), static_cast<std::ptrdiff_t>(std::min(name.size(), sizeof setup.name - 1)), setup.name);
    return std::ranges::all_of(capabilities,
                               [&](const Capability& c) { return ::ioctl(fd, c.request, c.value) == 0; }) &&
           ::ioctl(fd, UI_DEV_SETUP, &setup) == 0 && ::ioctl(fd, UI_DEV_CREATE) == 0;
}

}  // namespace

std::unique_ptr<UinputScroll> UinputScroll::open(std::error_code& error, const std::string& path) {
    error.clear();
    const int fd = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    const std::string name = "Orbinex scroll " + std::to_string(::getpid());
    if (fd >= 0 && create(fd, name)) return std::make_unique<UinputScroll>(fd, name);
    error.assign(errno, std::generic_category());
    if (fd >= 0) ::close(fd);
    return nullptr;
}

UinputScroll::UinputScroll(int fd, std::string name) : fd_(fd), name_(std::move(name)) {}

UinputScroll::~UinputScroll() {
    ::close(fd_);
}

bool UinputScroll::scroll(const ScrollEvent& event) {
    if (!sendRest()) return false;
    // The wheels turn only when the device has taken it.
    FineWheel vertical = vertical_;
    FineWheel horizontal = horizontal_;
    const ScrollReport report(vertical.add(event.wheel1), horizontal.add(event.wheel2));
    if (!send(std::as_bytes(report.events()))) return false;
    vertical_ = vertical;
    horizontal_ = horizontal;
    return true;
}

void UinputScroll::dropRemainder() {
    vertical_.reset();
    horizontal_.reset();
}

bool UinputScroll::sendRest() {
    const std::size_t size = std::exchange(restSize_, 0);
    if (send(std::span(rest_).first(size))) return restSize_ == 0;
    restSize_ = size;
    return false;
}

bool UinputScroll::send(std::span<const std::byte> bytes) {
    if (bytes.empty()) return true;
    ssize_t written = 0;
    do written = ::write(fd_, bytes.data(), bytes.size());
    while (written < 0 && errno == EINTR);
    if (written <= 0) return false;
    const auto rest = bytes.subspan(static_cast<std::size_t>(written));
    std::ranges::copy(rest, rest_.begin());
    restSize_ = rest.size();
    return true;
}

}  // namespace orbinex
