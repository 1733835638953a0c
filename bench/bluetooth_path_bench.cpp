// How long a notification takes from the moment bluetoothd has sent it to the posted event, beside a bare
// program that waits with poll() for the same kind of socket and posts the same event, all in one run, on a
// bus and an X server of its own. Ends with 1 when an event is missing or another one than the move that was
// sent.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QEventLoop>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <time.h>

#include "app/app_coordinator.h"
#include "app/linux/fd_watch.h"
#include "app/linux/qt_main_queue.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "link/bluez/bluez_central.h"
#include "link/bluez/private_bus.h"
#include "phone_process.h"
#include "sim/idle_editor_bridge.h"
#include "sim/memory_defaults.h"
#include "sim/simulated_shell.h"
#include "support/private_x_server.h"

// Last, for its macros.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Nanoseconds = std::chrono::nanoseconds;
using Way = PhoneProcess::Way;

constexpr int screenWidth = 1280;
constexpr int screenHeight = 900;
constexpr Point start{screenWidth / 2, screenHeight / 2};

Nanoseconds now() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

/// What becomes of the phone's moves.
MouseEvent expectedEvent(int n) {
    const bool isForth = n % 2 == 0;
    const int sign = isForth ? 1 : -1;
    return {.location = isForth ? Point{start.x + PhoneProcess::moveX, start.y + PhoneProcess::moveY} : start,
            .deltaX = sign * PhoneProcess::moveX,
            .deltaY = sign * PhoneProcess::moveY};
}

/// Takes the time of every event when it has been posted: nowhere at first, then to a desktop.
class TimingPoster final : public EventPoster {
  public:
    TimingPoster() { posted_.reserve(PhoneProcess::maximumCount); }

    /// From now on.
    void postTo(EventPoster& desktop) { desktop_ = &desktop; }
    void forget() { posted_.clear(); }
    [[nodiscard]] int count() const { return static_cast<int>(posted_.size()); }
    [[nodiscard]] const MouseEvent& event(int n) const { return at(n).event; }
    [[nodiscard]] Nanoseconds postedAt(int n) const { return at(n).time; }
    void note(const MouseEvent& event) { posted_.push_back({event, now()}); }

    [[nodiscard]] Point pointerLocation() override {
        return desktop_ ? desktop_->pointerLocation() : pointer_;
    }
    [[nodiscard]] std::span<const Rect> activeDisplays() override {
        return desktop_ ? desktop_->activeDisplays() : std::span(&display_, 1);
    }
    [[nodiscard]] Rect mainDisplay() override { return display_; }
    bool postMouse(const MouseEvent& event) override {
        const bool isPosted = !desktop_ || desktop_->postMouse(event);
        pointer_ = event.location;
        note(event);
        return isPosted;
    }
    bool postScroll(const ScrollEvent&) override { return false; }
    bool postKey(const KeyEvent&) override { return false; }
    bool postUnicode(std::u16string_view, bool) override { return false; }
    void dropWaiting() override {}

  private:
    struct Posted {
        MouseEvent event;
        Nanoseconds time{0};
    };
    [[nodiscard]] const Posted& at(int n) const { return posted_.at(static_cast<std::size_t>(n)); }

    EventPoster* desktop_ = nullptr;
    Rect display_{0, 0, screenWidth, screenHeight};
    Point pointer_ = start;
    std::vector<Posted> posted_;
};

/// Agrees to nothing; the phone is paired.
class NoPrompt final : public PairingPrompt {
  public:
    void ask(const std::string&, const std::optional<std::string>&, Answer answer) override { answer(false); }
    void withdraw() override {}
};

/// The whole program, on a bus where a phone is.
class Program {
  public:
    Program(const QString& busAddress, const char* name, MainQueue& queue, EventPoster& poster,
            KeyboardLayoutSource& layouts)
        : central_(QDBusConnection::connectToBus(busAddress, name), {queue, defaults_, prompt_, wake_}),
          app_(preferences_, {queue, defaults_, central_, wake_, poster, layouts, bridge_,
                              [] { return std::string(); }, shell_.ports()}) {}

    /// Brings up the session; false when it does not come.
    [[nodiscard]] bool connect() {
        auto& link = app_.centralManager;
        const auto limit = now() + 10s;
        bool isAsked = false;
        while (*link.phase != LinkPhase::connected && now() < limit) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            if (isAsked || link.nearbyDevices->empty()) continue;
            link.connectNearbyDevice(link.nearbyDevices->front().id);
            isAsked = true;
        }
        return *link.phase == LinkPhase::connected;
    }

  private:
    MemoryDefaults defaults_;
    SimulatedShell shell_;
    AppPreferences preferences_{defaults_};
    NoPrompt prompt_;
    WakeNotifier wake_;
    IdleEditorBridge bridge_;
    BluezCentral central_;
    AppCoordinator app_;
};

/// One way from the phone to the desktop.
struct Path {
    const char* name;
    const PhoneProcess& phone;
    Way way;
    /// Takes what comes until this many have been posted.
    std::function<void(int)> take;
    /// Returns when whatever was posted has been carried out.
    std::function<void()> sync = [] {};
};

void takeWithProgram(const TimingPoster& poster, int count) {
    while (poster.count() < count) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// The least that does it: wait, read until there is no more, post.
template <class Post>
void takeBare(int socket, int count, Post post) {
    std::array<std::uint8_t, 512> packet;
    int taken = 0;
    while (taken < count) {
        pollfd readable{socket, POLLIN, 0};
        ::poll(&readable, 1, -1);
        while (::recv(socket, packet.data(), packet.size(), MSG_DONTWAIT) > 0) {
            post(expectedEvent(taken));
            ++taken;
        }
    }
}

/// The same on Qt's event loop, to tell the loop's cost from the program's.
void takeWithBareQt(int socket, int count, TimingPoster& poster) {
    int taken = 0;
    const FdWatch watch(socket, [&] {
        std::array<std::uint8_t, 512> packet;
        while (::recv(socket, packet.data(), packet.size(), MSG_DONTWAIT) > 0)
            poster.postMouse(expectedEvent(taken++));
    });
    takeWithProgram(poster, count);
}

double ownProcessorTime() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) * 1e-3;
}

/// In microseconds, over all rounds.
struct Measured {
    std::vector<double> latencies;
    double processorTime = 0;

    [[nodiscard]] double quantile(double share) {
        const auto place = latencies.begin() +
                           static_cast<std::ptrdiff_t>(share * static_cast<double>(latencies.size() - 1));
        std::ranges::nth_element(latencies, place);
        return *place;
    }
    [[nodiscard]] double processorTimeEach() const {
        return processorTime / static_cast<double>(latencies.size());
    }
};

void measureRound(TimingPoster& poster, const Path& path, int count, Nanoseconds interval,
                  Measured& measured) {
    poster.forget();
    const double before = ownProcessorTime();
    path.phone.order(path.way, count, interval);
    path.take(count);
    measured.processorTime += ownProcessorTime() - before;
    path.phone.awaitEnd();
    path.sync();
    for (int i = 0; i < count; ++i) {
        if (poster.event(i) != expectedEvent(i)) {
            std::printf("%s: event %d is not the move that was sent\n", path.name, i);
            std::exit(1);
        }
        const std::chrono::duration<double, std::micro> latency = poster.postedAt(i) - path.phone.sentAt(i);
        measured.latencies.push_back(latency.count());
    }
}

struct Pace {
    const char* name;
    int rounds;
    int count;
    Nanoseconds interval;
};
constexpr Pace asAPhone{"At 125 notifications a second", 8, 126, 8ms};
constexpr Pace flatOut{"Flat out", 30, 2000, 0ns};

/// Rounds of all paths in turn, so that whatever else the computer does meets all. Ratios are to the first
/// path.
void compare(const char* where, const Pace& pace, TimingPoster& poster, const std::vector<Path>& paths) {
    std::vector<Measured> all(paths.size());
    for (int round = 0; round < pace.rounds; ++round) {
        for (std::size_t i = 0; i < paths.size(); ++i)
            measureRound(poster, paths[i], pace.count, pace.interval, all[i]);
    }
    std::printf("\n%s, %s: %d rounds of %d\n", pace.name, where, pace.rounds, pace.count);
    const auto row = [](const char* name, Measured& measured) {
        std::printf("  %-46s %10.2f %10.2f %10.2f\n", name, measured.quantile(0.5), measured.quantile(0.99),
                    measured.processorTimeEach());
    };
    for (std::size_t i = 0; i < paths.size(); ++i) row(paths[i].name, all[i]);
    for (std::size_t i = 1; i < paths.size(); ++i) {
        std::printf("  ratio to %-37s %10.3f %10.3f %10.3f\n", paths[i].name,
                    all[0].quantile(0.5) / all[i].quantile(0.5),
                    all[0].quantile(0.99) / all[i].quantile(0.99),
                    all[0].processorTimeEach() / all[i].processorTimeEach());
    }
}

}  // namespace
}  // namespace orbinex

int main(int argc, char** argv) {
    using namespace orbinex;
    const test::PrivateXServer server(screenWidth, screenHeight);
    const test::PrivateBus bus;
    const test::PrivateBus busWithoutSockets;
    const PhoneProcess phone(bus.address(), true);
    const PhoneProcess phoneWithoutSockets(busWithoutSockets.address(), false);

    const QCoreApplication application(argc, argv);
    QtMainQueue queue;
    const auto connection = X11Connection::open(server.display());
    Display* const bareDisplay = XOpenDisplay(server.display().c_str());
    if (!connection || !bareDisplay) return 1;
    const FdWatch displayEvents(connection->fd(), [&] { connection->processEvents(); });
    X11KeyboardLayoutSource layouts(*connection, queue);
    X11EventPoster desktop(*connection, queue);
    TimingPoster poster;
    Program program(bus.address(), "sockets", queue, poster, layouts);
    Program programWithoutSockets(busWithoutSockets.address(), "signals", queue, poster, layouts);
    if (!program.connect() || !programWithoutSockets.connect()) {
        std::printf("The session does not come\n");
        return 1;
    }

    const auto syncProgram = [&] { XSync(connection->display(), False); };
    const auto syncBare = [&] { XSync(bareDisplay, False); };
    const auto run = [&](int count) { takeWithProgram(poster, count); };
    const Path bySocket{"the program, AcquireNotify", phone, Way::notification, run, syncProgram};
    const Path bySignal{"the program, StartNotify", phoneWithoutSockets, Way::notification, run};
    const Path bare{"bare program: poll, recv, post", phone, Way::bareSocket, [&](int count) {
                        takeBare(phone.bareSocket(), count,
                                 [&](const MouseEvent& event) { poster.postMouse(event); });
                    }};
    const Path bareOnDesktop{"bare program: poll, recv, XTest, flush", phone, Way::bareSocket,
                             [&](int count) {
                                 takeBare(phone.bareSocket(), count, [&](const MouseEvent& event) {
                                     XTestFakeMotionEvent(bareDisplay, -1, static_cast<int>(event.location.x),
                                                          static_cast<int>(event.location.y), CurrentTime);
                                     XFlush(bareDisplay);
                                     poster.note(event);
                                 });
                             },
                             syncBare};

    const Path bareQt{"bare Qt program: notifier, recv, post", phone, Way::bareSocket,
                      [&](int count) { takeWithBareQt(phone.bareSocket(), count, poster); }};
    std::printf("From the notification sent to the event posted, us%10s %10s %10s\n", "median", "99%",
                "own CPU");
    compare("recorded", asAPhone, poster, {bySocket, bare, bareQt, bySignal});
    compare("recorded", flatOut, poster, {bySocket, bare, bareQt, bySignal});
    XWarpPointer(bareDisplay, None, DefaultRootWindow(bareDisplay), 0, 0, 0, 0, static_cast<int>(start.x),
                 static_cast<int>(start.y));
    syncBare();
    poster.postTo(desktop);
    compare("on the desktop", asAPhone, poster, {bySocket, bareOnDesktop});
    compare("on the desktop", flatOut, poster, {bySocket, bareOnDesktop});
    XCloseDisplay(bareDisplay);
    return 0;
}
