// What a change of the keyboard layout costs: reading the keys from the X server and building the table of
// characters. Ends with 1 when a table does not know its layout.

#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "app/linux/qt_main_queue.h"
#include "input/keyboard_layout_mapper.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "support/private_x_server.h"

namespace orbinex {
namespace {

using Clock = std::chrono::steady_clock;

struct Layout {
    const char* arguments;
    /// A character that tells this layout from the others, and the macOS virtual key code that gives it.
    const char* character;
    std::uint16_t keycode;
};

constexpr std::array layouts{
    Layout{"us", "z", 6},       Layout{"de", "\u00df", 27}, Layout{"fr", "\u00e9", 19},
    Layout{"ru", "\u0436", 41}, Layout{"dvorak", "e", 2},
};

struct Times {
    double mean = 0;
    double worst = 0;
};

/// Milliseconds.
template <class Work>
Times measure(Work work) {
    constexpr int repetitions = 200;
    work();
    Times times;
    for (int i = 0; i < repetitions; ++i) {
        const auto start = Clock::now();
        work();
        const double time = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        times.mean += time / repetitions;
        times.worst = std::max(times.worst, time);
    }
    return times;
}

/// The mean of reading and building; negative when the table is wrong.
double measureLayout(const test::PrivateXServer& server, const Layout& layout) {
    const auto connection = X11Connection::open(server.display());
    if (!connection || !server.run(std::string("setxkbmap ") + layout.arguments)) return -1;
    QtMainQueue queue;
    X11KeyboardLayoutSource source(*connection, queue);
    KeyboardLayoutMapper mapper(source);
    const auto key = mapper.table().find(layout.character);
    if (!key || key->keycode != layout.keycode) return -1;

    const Times building = measure([&] { mapper.rebuild(); });
    const Times all = measure([&] {
        X11KeyboardLayoutSource freshSource(*connection, queue);
        const KeyboardLayoutMapper freshMapper(freshSource);
    });
    std::printf("%-8s %4zu characters   %6.3f ms   %6.3f ms   %6.3f ms\n", layout.arguments,
                mapper.table().size(), building.mean, all.mean, all.worst);
    return all.mean;
}

}  // namespace
}  // namespace orbinex

int main(int argc, char** argv) {
    using namespace orbinex;
    const QCoreApplication application(argc, argv);
    const test::PrivateXServer server;
    std::printf("Keyboard table rebuild %16s %11s %11s\n", "building", "+ reading", "worst");
    double slowest = 0;
    for (const Layout& layout : layouts) {
        const double mean = measureLayout(server, layout);
        if (mean < 0) {
            std::printf("%s: the table does not know this layout\n", layout.arguments);
            return 1;
        }
        slowest = std::max(slowest, mean);
    }
    std::printf("\nmean   table rebuild, slowest layout  %.3f ms  (wanted: under 5 ms)\n", slowest);
    return 0;
}
