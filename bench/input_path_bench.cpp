// What the program costs between a notification and the X event it becomes, beside a bare loop of XTest calls
// and xdotool, all in one run on an X server of its own. Ends with 1 when the pointer is not where the moves
// lead.

#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>

#include "app/linux/qt_main_queue.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "protocol/gatt.h"
#include "support/connected_program.h"
#include "support/private_x_server.h"

namespace orbinex {
namespace {

constexpr int screenWidth = 1280;
constexpr int screenHeight = 900;

struct Pixel {
    int x = 0;
    int y = 0;
    friend bool operator==(const Pixel&, const Pixel&) = default;
};

/// Runs back and forth near its start, and ends elsewhere than it began.
std::vector<Pixel> path(int count) {
    constexpr int leg = 25;
    std::vector<Pixel> deltas;
    deltas.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) deltas.push_back(i / leg % 2 == 0 ? Pixel{3, 2} : Pixel{-3, -2});
    return deltas;
}

Pixel endOf(Pixel start, const std::vector<Pixel>& deltas) {
    for (const Pixel& delta : deltas) start = {start.x + delta.x, start.y + delta.y};
    return start;
}

/// Looks at the pointer and puts it somewhere, as a client of its own.
class Observer {
  public:
    explicit Observer(const std::string& name) : display_(XOpenDisplay(name.c_str())) {
        if (!display_) std::exit(1);
    }
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    ~Observer() { XCloseDisplay(display_); }

    void put(Pixel place) {
        XWarpPointer(display_, None, DefaultRootWindow(display_), 0, 0, 0, 0, place.x, place.y);
        XSync(display_, False);
    }
    [[nodiscard]] Pixel pointer() {
        Window window = 0;
        Pixel place;
        Pixel inWindow;
        unsigned mask = 0;
        XQueryPointer(display_, DefaultRootWindow(display_), &window, &window, &place.x, &place.y,
                      &inWindow.x, &inWindow.y, &mask);
        return place;
    }

    /// Covers the screen with a window that is told of motion, as a program's window is.
    void watchMotion() {
        XSetWindowAttributes attributes{};
        attributes.override_redirect = True;
        attributes.event_mask = PointerMotionMask;
        window_ = XCreateWindow(display_, DefaultRootWindow(display_), 0, 0, screenWidth, screenHeight, 0, 0,
                                InputOnly, nullptr, CWOverrideRedirect | CWEventMask, &attributes);
        XMapRaised(display_, window_);
        XSync(display_, False);
    }
    void ignoreMotion() {
        XDestroyWindow(display_, window_);
        XSync(display_, True);
    }
    void forgetMotion() { XSync(display_, True); }
    void awaitMotion() {
        XEvent event;
        XWindowEvent(display_, window_, PointerMotionMask, &event);
    }

  private:
    Display* display_;
    Window window_ = 0;
};

/// One way of moving the pointer.
struct Mover {
    const char* name;
    std::function<void(Pixel)> move;
    /// Returns when the server has carried out every move.
    std::function<void()> sync;
};

/// The least that follows the pointer: ask, add, limit, post.
void bareMove(Display* display, Pixel delta) {
    Window window = 0;
    Pixel place;
    Pixel inWindow;
    unsigned mask = 0;
    XQueryPointer(display, DefaultRootWindow(display), &window, &window, &place.x, &place.y, &inWindow.x,
                  &inWindow.y, &mask);
    XTestFakeMotionEvent(display, -1, std::clamp(place.x + delta.x, 0, screenWidth - 1),
                         std::clamp(place.y + delta.y, 0, screenHeight - 1), CurrentTime);
    XFlush(display);
}

double secondsOf(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Microseconds.
struct Cost {
    double wall = 0;
    double cpu = 0;
};

class Stopwatch {
  public:
    [[nodiscard]] Cost elapsed() const {
        return {(secondsOf(CLOCK_MONOTONIC) - wall_) * 1e6,
                (secondsOf(CLOCK_PROCESS_CPUTIME_ID) - cpu_) * 1e6};
    }

  private:
    double wall_ = secondsOf(CLOCK_MONOTONIC);
    double cpu_ = secondsOf(CLOCK_PROCESS_CPUTIME_ID);
};

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

Cost median(const std::vector<Cost>& costs) {
    std::vector<double> wall;
    std::vector<double> cpu;
    for (const Cost& cost : costs) {
        wall.push_back(cost.wall);
        cpu.push_back(cost.cpu);
    }
    return {median(std::move(wall)), median(std::move(cpu))};
}

void printRow(const char* name, Cost cost) {
    std::printf("  %-42s %10.2f us %10.2f us\n", name, cost.wall, cost.cpu);
}

void printRatio(const char* name, Cost a, Cost b) {
    std::printf("  ratio %-36s %10.3f    %10.3f\n", name, a.wall / b.wall, a.cpu / b.cpu);
}

void checkPointer(Observer& observer, Pixel wanted, const char* mover) {
    const Pixel found = observer.pointer();
    if (found == wanted) return;
    std::printf("%s: the pointer is at %d, %d instead of %d, %d\n", mover, found.x, found.y, wanted.x,
                wanted.y);
    std::exit(1);
}

/// Cost of a move when one follows the other without pause, the server's work included.
Cost measureRound(const Mover& mover, Observer& observer, Pixel start, const std::vector<Pixel>& deltas) {
    observer.put(start);
    const Stopwatch stopwatch;
    for (const Pixel& delta : deltas) mover.move(delta);
    mover.sync();
    const Cost total = stopwatch.elapsed();
    checkPointer(observer, endOf(start, deltas), mover.name);
    const auto count = static_cast<double>(deltas.size());
    return {total.wall / count, total.cpu / count};
}

struct Compared {
    Cost program;
    Cost bare;
};

/// Rounds of both in turn, so that whatever else the machine does meets both.
Compared compareAtFullSpeed(const char* where, const Mover& program, const Mover& bare, Observer& observer,
                            Pixel start) {
    constexpr int rounds = 21;
    const auto deltas = path(2013);
    std::vector<Cost> programCosts;
    std::vector<Cost> bareCosts;
    for (int round = 0; round < rounds; ++round) {
        programCosts.push_back(measureRound(program, observer, start, deltas));
        bareCosts.push_back(measureRound(bare, observer, start, deltas));
    }
    const Compared result{median(programCosts), median(bareCosts)};
    std::printf("\nAt full speed %s: median of %d rounds of %zu moves\n", where, rounds, deltas.size());
    printRow(program.name, result.program);
    printRow(bare.name, result.bare);
    printRatio("program / bare loop", result.program, result.bare);
    return result;
}

struct PacedCosts {
    /// Until the move has been handed to the server.
    std::vector<Cost> posted;
    /// Until another client of the server has the event.
    std::vector<Cost> seen;
};

/// Cost of a move as a phone sends them, one every 8 ms.
void measurePaced(const Mover& mover, Observer& observer, Pixel start, const std::vector<Pixel>& deltas,
                  PacedCosts& costs) {
    constexpr timespec pause{0, 8'000'000};
    observer.put(start);
    observer.forgetMotion();
    for (const Pixel& delta : deltas) {
        ::clock_nanosleep(CLOCK_MONOTONIC, 0, &pause, nullptr);
        const Stopwatch stopwatch;
        mover.move(delta);
        costs.posted.push_back(stopwatch.elapsed());
        observer.awaitMotion();
        costs.seen.push_back(stopwatch.elapsed());
    }
    checkPointer(observer, endOf(start, deltas), mover.name);
}

Compared comparePaced(const Mover& program, const Mover& bare, Observer& observer, Pixel start) {
    constexpr int rounds = 8;
    const auto deltas = path(43);
    PacedCosts programCosts;
    PacedCosts bareCosts;
    observer.watchMotion();
    for (int round = 0; round < rounds; ++round) {
        measurePaced(program, observer, start, deltas, programCosts);
        measurePaced(bare, observer, start, deltas, bareCosts);
    }
    observer.ignoreMotion();
    const Compared posted{median(programCosts.posted), median(bareCosts.posted)};
    const Compared seen{median(programCosts.seen), median(bareCosts.seen)};
    std::printf("\nAt 125 moves a second: median of %d rounds of %zu moves\n", rounds, deltas.size());
    printRow("the program, until it is sent", posted.program);
    printRow("bare loop, until it is sent", posted.bare);
    printRatio("until sent", posted.program, posted.bare);
    printRow("the program, until a client has the event", seen.program);
    printRow("bare loop, until a client has the event", seen.bare);
    printRatio("until a client has the event", seen.program, seen.bare);
    return seen;
}

void runXdotool(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "xdotool");
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    pid_t child = 0;
    int status = -1;
    if (::posix_spawnp(&child, "xdotool", nullptr, nullptr, words.data(), environ) != 0 ||
        ::waitpid(child, &status, 0) != child || status != 0) {
        std::printf("xdotool cannot be run\n");
        std::exit(1);
    }
}

std::vector<std::string> xdotoolMove(Pixel delta) {
    return {"mousemove_relative", "--", std::to_string(delta.x), std::to_string(delta.y)};
}

void compareWithXdotool(const Mover& program, Observer& observer, Pixel start) {
    const auto deltas = path(213);
    const Cost ours = measureRound(program, observer, start, deltas);

    std::vector<std::string> chain;
    for (const Pixel& delta : deltas) {
        for (std::string& word : xdotoolMove(delta)) chain.push_back(std::move(word));
    }
    const Mover oneProcess{"xdotool, one process for all", [](Pixel) {}, [&] { runXdotool(chain); }};
    const Cost chained = measureRound(oneProcess, observer, start, deltas);
    const Mover processEach{"xdotool, one process each", [](Pixel delta) { runXdotool(xdotoolMove(delta)); },
                            [] {}};
    const Cost each = measureRound(processEach, observer, start, deltas);

    std::printf("\nThe same %zu moves by xdotool mousemove_relative, wall time per move\n", deltas.size());
    std::printf("  %-42s %10.2f us\n", program.name, ours.wall);
    std::printf("  %-42s %10.2f us\n", oneProcess.name, chained.wall);
    std::printf("  %-42s %10.2f us\n", processEach.name, each.wall);
    std::printf("  ratio %-36s %10.4f\n", "program / xdotool, one process", ours.wall / chained.wall);
    std::printf("  ratio %-36s %10.4f\n", "program / xdotool, process each", ours.wall / each.wall);
}

}  // namespace
}  // namespace orbinex

int main(int argc, char** argv) {
    using namespace orbinex;
    const test::PrivateXServer server(screenWidth, screenHeight);
    ::setenv("DISPLAY", server.display().c_str(), 1);
    const QCoreApplication application(argc, argv);
    QtMainQueue queue;

    const auto connection = X11Connection::open(server.display());
    if (!connection) return 1;
    X11EventPoster poster(*connection, queue);
    X11KeyboardLayoutSource layouts(*connection, queue);
    test::ConnectedProgram connected(queue, poster, layouts);
    if (!connected.connect([] { QCoreApplication::processEvents(); })) return 1;
    Observer observer(server.display());
    Display* const bareDisplay = XOpenDisplay(server.display().c_str());
    if (!bareDisplay) return 1;

    const auto packet = [](Pixel delta) {
        return DecodedPacket{
            DecodedPacket::MouseMove{static_cast<float>(delta.x), static_cast<float>(delta.y)}}
            .encode();
    };
    // The phone's work, done beforehand.
    const Bytes forth = packet({3, 2});
    const Bytes back = packet({-3, -2});
    const Mover program{"the program",
                        [&](Pixel delta) {
                            connected.central.notify(OrbinexProtocol::mouseCharacteristicUUID,
                                                     delta.x > 0 ? forth : back);
                        },
                        [&] { XSync(connection->display(), False); }};
    const Mover bare{"bare loop: query, add, clamp, XTest, flush",
                     [&](Pixel delta) { bareMove(bareDisplay, delta); }, [&] { XSync(bareDisplay, False); }};

    const Pixel middle{screenWidth / 2, screenHeight / 2};
    std::printf("Cost of a pointer move%36s%14s\n", "wall", "own CPU");
    const Compared inTheMiddle = compareAtFullSpeed("in the middle", program, bare, observer, middle);
    const Compared atTheEdge = compareAtFullSpeed("near an edge", program, bare, observer, {10, 10});
    const Compared paced = comparePaced(program, bare, observer, middle);
    compareWithXdotool(program, observer, middle);
    XCloseDisplay(bareDisplay);

    std::printf("\n");
    const auto conclude = [](const char* where, const Compared& compared) {
        std::printf("ratio  program / bare loop, %-42s %.3f  (wanted: at most 1.10)\n", where,
                    compared.program.wall / compared.bare.wall);
    };
    conclude("at full speed in the middle", inTheMiddle);
    conclude("at full speed near an edge", atTheEdge);
    conclude("at 125 Hz until a client has the event", paced);
    return 0;
}
