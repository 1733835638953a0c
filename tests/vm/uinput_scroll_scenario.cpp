// Scrolling through a device of our own in the kernel, as what stands above the kernel sees it.

#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <regex>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <unistd.h>

#include "input/uinput/uinput_scroll.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_device_watch.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x_client.h"
#include "sim/virtual_main_queue.h"
#include "support/private_x_server.h"
#include "vm/scenario.h"

// Last, for its macros.
#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

constexpr auto limit = 60s;

/// What a program sees that asks the X server for scrolling finer than clicks.
class FineScrolling {
  public:
    /// In 1/120 of a click.
    long down = 0;
    long right = 0;

    FineScrolling(const std::string& display, const std::string& device)
        : display_(XOpenDisplay(display.c_str())) {
        int count = 0;
        XIDeviceInfo* const devices = XIQueryDevice(display_, XIAllDevices, &count);
        for (const XIDeviceInfo& info : std::span(devices, static_cast<std::size_t>(count))) {
            if (info.name == device) findAxes(info);
        }
        XIFreeDeviceInfo(devices);
        unsigned char bits[XIMaskLen(XI_LASTEVENT)]{};
        XISetMask(bits, XI_RawMotion);
        XIEventMask mask{XIAllMasterDevices, sizeof bits, bits};
        XISelectEvents(display_, DefaultRootWindow(display_), &mask, 1);
        XSync(display_, False);
    }
    FineScrolling(const FineScrolling&) = delete;
    FineScrolling& operator=(const FineScrolling&) = delete;
    ~FineScrolling() { XCloseDisplay(display_); }

    void handleEvents() {
        while (XPending(display_) > 0) {
            XEvent event;
            XNextEvent(display_, &event);
            if (!XGetEventData(display_, &event.xcookie)) continue;
            if (event.xcookie.evtype == XI_RawMotion)
                add(*static_cast<const XIRawEvent*>(event.xcookie.data));
            XFreeEventData(display_, &event.xcookie);
        }
    }

  private:
    void findAxes(const XIDeviceInfo& info) {
        for (const XIAnyClassInfo* any :
             std::span(info.classes, static_cast<std::size_t>(info.num_classes))) {
            if (any->type != XIScrollClass) continue;
            const auto* scroll = reinterpret_cast<const XIScrollClassInfo*>(any);
            (scroll->scroll_type == XIScrollTypeVertical ? vertical_ : horizontal_) =
                Axis{scroll->number, scroll->increment};
        }
    }
    void add(const XIRawEvent& event) {
        const double* value = event.raw_values;
        for (int axis = 0; axis < event.valuators.mask_len * 8; ++axis) {
            if (!XIMaskIsSet(event.valuators.mask, axis)) continue;
            if (axis == vertical_.number) down += std::lround(*value / vertical_.perClick * 120);
            if (axis == horizontal_.number) right += std::lround(*value / horizontal_.perClick * 120);
            ++value;
        }
    }

    struct Axis {
        int number = -1;
        double perClick = 0;
    };
    Display* display_;
    Axis vertical_;
    Axis horizontal_;
};

/// The file under which programs read the device.
std::string eventNode(std::string_view device) {
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/input")) {
        std::ifstream file(entry.path() / "device/name");
        std::string name;
        const std::string node = entry.path().filename();
        if (node.starts_with("event") && std::getline(file, name) && name == device)
            return "/dev/input/" + node;
    }
    return {};
}

using Buttons = std::vector<unsigned>;

/// Adds what the server has carried out since the last time.
void addPresses(Buttons& presses, XClient& client) {
    XSync(client.display(), False);
    for (const auto& event : client.takeEvents()) {
        if (event.type == XClient::Event::Type::buttonPress) presses.push_back(event.detail);
    }
}

/// Programs that know of clicks only get just these.
testing::AssertionResult isPressed(const Buttons& expected, XClient& client) {
    Buttons presses;
    const auto isComplete = [&] {
        addPresses(presses, client);
        return presses.size() >= expected.size();
    };
    if (waitUntil(isComplete, limit) && presses == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(presses);
}

/// The device, known to the system.
class UinputScrollScenario : public testing::Test {
  protected:
    UinputScrollScenario() {
        std::error_code error;
        device_ = UinputScroll::open(error);
        if (!device_) throw std::system_error(error, "/dev/uinput");
        run({"udevadm", "settle"});
    }

    static void run(const std::vector<std::string>& command, const Process::Environment& environment = {}) {
        Process process(command.front(), command, environment);
        EXPECT_EQ(process.waitForEnd(limit), 0);
    }

    std::unique_ptr<UinputScroll> device_;
};

TEST_F(UinputScrollScenario, theRuleTagsTheDeviceForWhoeverSitsAtTheComputer) {
    std::filesystem::create_directories("/run/udev/rules.d");
    const std::string rule = "70-orbinex-uinput.rules";
    std::filesystem::copy_file("packaging/udev/" + rule, "/run/udev/rules.d/" + rule,
                               std::filesystem::copy_options::overwrite_existing);
    run({"udevadm", "control", "--reload"});
    run({"udevadm", "trigger", "--settle", "/dev/uinput"});
    Process info("udevadm", {"udevadm", "info", "-q", "property", "/dev/uinput"});
    EXPECT_TRUE(info.waitFor(std::regex("CURRENT_TAGS=.*:uaccess:"), limit));
}

TEST_F(UinputScrollScenario, libinputSeesStepsOfBothAxes) {
    Process watcher("libinput", {"stdbuf", "-oL", "libinput", "debug-events", "--device",
                                 eventNode(device_->deviceName())});
    ASSERT_TRUE(watcher.waitFor("DEVICE_ADDED", limit));
    // It begins a direction, or again after half a second, with half a click at least, so that no wheel turns
    // by a touch. Hence the first amounts, and all at once.
    const struct {
        ScrollEvent event;
        const char* seen;
    } rows[] = {
        {{-30, 0}, R"(vert [-0-9.]+/72\.0\* horiz 0)"},  {{-1, 0}, R"(vert [-0-9.]+/2\.0\* horiz 0)"},
        {{-1, 0}, R"(vert [-0-9.]+/2\.0\* horiz 0)"},    {{-1, 0}, R"(vert [-0-9.]+/3\.0\* horiz 0)"},
        {{65, 0}, R"(vert [-0-9.]+/-155\.0\* horiz 0)"}, {{0, -27}, R"(horiz [-0-9.]+/64\.0\*)"},
        {{0, -1}, R"(horiz [-0-9.]+/3\.0\*)"},           {{0, 100}, R"(horiz [-0-9.]+/-239\.0\*)"},
    };
    for (const auto& row : rows) ASSERT_TRUE(device_->scroll(row.event));
    for (const auto& row : rows) {
        EXPECT_TRUE(watcher.waitFor(std::regex(row.seen), limit));
    }
}

TEST_F(UinputScrollScenario, anXServerOfTheSystemsDevicesScrollsByLessThanAClick) {
    const std::string display = ":33";
    const std::string name(device_->deviceName());
    std::ofstream("/run/xorg.conf")
        << "Section \"Device\"\nIdentifier \"none\"\nDriver \"dummy\"\nEndSection\n";
    const Process server(
        "Xorg",
        {"Xorg", display, "-config", "/run/xorg.conf", "-noreset", "-novtswitch", "-sharevts", "-nolisten",
         "tcp", "vt1", "-logfile", Scenario::machine->log("xorg.log")},
        {}, Scenario::machine->log("xorg.output.log"));
    std::unique_ptr<X11Connection> connection;
    ASSERT_TRUE(waitUntil([&] { return (connection = X11Connection::open(display)) != nullptr; }, limit));
    VirtualMainQueue queue;
    X11EventPoster poster(*connection, queue, {.scrollSink = device_.get()});
    X11DeviceWatch watch(*connection, name);
    const auto isInUse = [&] {
        connection->processEvents();
        return watch.isInUse();
    };
    ASSERT_TRUE(waitUntil(isInUse, limit));

    XClient client(display);
    FineScrolling seen(display, name);
    // Half a click each, for the same reason.
    const struct {
        ScrollEvent event;
        long down;
        long right;
        Buttons presses;
    } rows[] = {
        {{-26, 0}, 62, 0, {}},     {{-27, 0}, 127, 0, {5}}, {{0, -26}, 127, 62, {}},
        {{0, -27}, 127, 127, {7}}, {{53, 0}, 0, 127, {4}},  {{0, 53}, 0, 0, {6}},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(poster.postScroll(row.event));
        EXPECT_TRUE(waitUntil(
            [&] {
                seen.handleEvents();
                return seen.down == row.down && seen.right == row.right;
            },
            limit))
            << seen.down << " down, " << seen.right << " right";
        EXPECT_TRUE(isPressed(row.presses, client));
    }

    // As when another session is on the screen.
    run({"xinput", "disable", name}, {{"DISPLAY", display}});
    ASSERT_TRUE(waitUntil([&] { return !isInUse(); }, limit));
    ASSERT_TRUE(poster.postScroll({-100, 0}));
    EXPECT_TRUE(isPressed({5, 5}, client));
    run({"xinput", "enable", name}, {{"DISPLAY", display}});
    ASSERT_TRUE(waitUntil(isInUse, limit));
    ASSERT_TRUE(poster.postScroll({-30, 0}));
    EXPECT_TRUE(waitUntil(
        [&] {
            seen.handleEvents();
            return seen.down == 72;
        },
        limit))
        << seen.down;
}

TEST_F(UinputScrollScenario, aVirtualXServerScrollsByWheelClicksThoughThereIsADevice) {
    const int node = ::open(eventNode(device_->deviceName()).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(node, 0);
    const auto readEvent = [&]() -> std::optional<input_event> {
        input_event event{};
        if (::read(node, &event, sizeof event) != sizeof event) return std::nullopt;
        return event;
    };
    const PrivateXServer server;
    const auto connection = X11Connection::open(server.display());
    ASSERT_TRUE(connection);
    VirtualMainQueue queue;
    X11EventPoster poster(*connection, queue, {.scrollSink = device_.get()});
    XClient client(server.display());

    EXPECT_TRUE(poster.postScroll({-50, 0}));
    EXPECT_TRUE(isPressed({5}, client));
    EXPECT_FALSE(readEvent()) << "it scrolls another display";
    // It would have been seen.
    EXPECT_TRUE(device_->scroll({-50, 0}));
    const auto event = readEvent();
    ASSERT_TRUE(event);
    EXPECT_EQ(event->code, REL_WHEEL_HI_RES);
    EXPECT_EQ(event->value, -120);
    ::close(node);
}

}  // namespace
}  // namespace orbinex::test
