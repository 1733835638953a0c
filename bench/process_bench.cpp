// The program as a whole process, beside others of its kind, on buses, a display and folders of its own: time
// to the tray icon and to the window's first picture, memory, and what it costs while it waits.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QThread>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "child_program.h"
#include "clip_library.h"
#include "editor_folder.h"
#include "link/bluez/private_bus.h"
#include "phone_process.h"
#include "support/private_x_server.h"
#include "support/temporary_folder.h"
#include "ui/notifier_watcher.h"
#include "window_watch.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int starts = 9;
constexpr auto settling = 6s;
constexpr auto watched = 10s;
/// How long the program keeps windows that nobody sees.
constexpr auto unusedLifetime = 20s;
constexpr int meteredTracks = 8;
constexpr int clipSeconds = 40;
constexpr const char* neighbourDaemon = "/usr/lib/x86_64-linux-gnu/libexec/kdeconnectd";

/// A tray that icons register with over the session's bus.
class Tray {
  public:
    explicit Tray(const QString& busAddress) : bus_(QDBusConnection::connectToBus(busAddress, "tray")) {
        using D = QDBusConnection;
        if (!bus_.registerObject("/StatusNotifierWatcher", &watcher_,
                                 D::ExportAllSlots | D::ExportAllProperties))
            throw std::runtime_error("no tray");
        watcher_.moveToThread(&thread_);
        thread_.start();
        bus_.registerService("org.kde.StatusNotifierWatcher");
    }
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;
    ~Tray() {
        thread_.quit();
        thread_.wait();
    }
    void forget() { watcher_.RegisterStatusNotifierItem({}); }
    [[nodiscard]] bool hasIcon() { return !watcher_.item().isEmpty(); }

  private:
    QDBusConnection bus_;
    test::NotifierWatcher watcher_;
    QThread thread_;
};

/// A session with a phone in reach that is paired.
struct Desk {
    test::PrivateXServer server;
    test::PrivateBus sessionBus;
    test::PrivateBus systemBus;
    PhoneProcess phone{systemBus.address(), true};
    test::TemporaryFolder folder;

    [[nodiscard]] ChildProgram::Environment environment() const {
        const std::string home = folder.path();
        return {{"DISPLAY", server.display()},
                {"DBUS_SESSION_BUS_ADDRESS", sessionBus.address().toStdString()},
                {"DBUS_SYSTEM_BUS_ADDRESS", systemBus.address().toStdString()},
                {"HOME", home},
                {"XDG_CONFIG_HOME", home},
                {"XDG_CACHE_HOME", home},
                {"XDG_DATA_HOME", home},
                {"XDG_RUNTIME_DIR", home},
                {"WAYLAND_DISPLAY", ""},
                {"ORBINEX_EDITOR_FOLDER", home + "/editor"}};
    }
};

class Bench {
  public:
    Bench(Desk& desk, std::filesystem::path programs)
        : desk_(desk),
          programs_(std::move(programs)),
          tray_(desk.sessionBus.address()),
          windows_(desk.server.display()) {}

    void run();

  private:
    using Command = std::vector<std::string>;
    struct Cost {
        double processorMilliseconds;  ///< a second
        double wakeUps;                ///< a second
    };

    [[nodiscard]] Command own(const char* name, Command arguments = {}) const {
        arguments.insert(arguments.begin(), programs_ / name);
        return arguments;
    }
    [[nodiscard]] Command bareWindowWithoutOpenGL() const {
        return {"/usr/bin/env", "QT_QUICK_BACKEND=software", programs_ / "bare_window"};
    }
    /// In its own usual state, as no other start of it left it.
    [[nodiscard]] ChildProgram start(const Command& command) const {
        return ChildProgram(command, desk_.environment());
    }
    [[nodiscard]] Milliseconds timeUntil(const Command& command, const std::function<bool()>& isReady) const;
    void compareStarts(const char* what, const char* wanted,
                       const std::vector<std::pair<const char*, Command>>& programs,
                       const std::function<bool()>& isReady);
    [[nodiscard]] static Cost costOf(const ChildProgram& program);
    static void tellCost(const char* state, const ChildProgram& program);
    /// A later start opens the window of the one that runs.
    void openWindow() const;
    void closeWindow() const;
    void neighbours();
    void windowOpenAndClosed();
    void connectedAndMetering();
    void openEditor(EditorFolder& editor, const ClipLibrary& clips) const;

    static void require(bool isSo, const char* what) {
        if (!isSo) throw std::runtime_error(what);
    }
    static void waitFor(const std::function<bool()>& condition, const char* what) {
        const auto end = Clock::now() + 60s;
        while (!condition()) {
            require(Clock::now() < end, what);
            std::this_thread::sleep_for(300us);
        }
    }

    Desk& desk_;
    std::filesystem::path programs_;
    Tray tray_;
    WindowWatch windows_;
};

Milliseconds Bench::timeUntil(const Command& command, const std::function<bool()>& isReady) const {
    const auto begin = Clock::now();
    const auto program = start(command);
    waitFor(isReady, command[0].c_str());
    return Clock::now() - begin;
}

void Bench::compareStarts(const char* what, const char* wanted,
                          const std::vector<std::pair<const char*, Command>>& programs,
                          const std::function<bool()>& isReady) {
    std::vector<std::vector<double>> times(programs.size());
    // In turn, so that whatever else the computer does meets all.
    for (int i = 0; i < starts; ++i) {
        for (std::size_t which = 0; which < programs.size(); ++which) {
            tray_.forget();
            times[which].push_back(timeUntil(programs[which].second, isReady).count());
            waitFor([this] { return !windows_.hasWindow(); }, "a window stays");
        }
    }
    const auto median = [](std::vector<double>& all) {
        std::ranges::nth_element(all, all.begin() + starts / 2);
        return all[starts / 2];
    };
    std::printf("\nFrom start to %s, ms: median of %d (wanted: %s)\n", what, starts, wanted);
    const double ours = median(times[0]);
    for (std::size_t which = 0; which < programs.size(); ++which) {
        const double its = median(times[which]);
        std::printf("  %-52s %8.0f   ours / its %5.2f\n", programs[which].first, its, ours / its);
    }
}

Bench::Cost Bench::costOf(const ChildProgram& program) {
    std::this_thread::sleep_for(settling);
    const auto time = program.processorTime();
    const long wakeUps = program.wakeUps();
    std::this_thread::sleep_for(watched);
    const double seconds = std::chrono::duration<double>(watched).count();
    return {Milliseconds(program.processorTime() - time).count() / seconds,
            static_cast<double>(program.wakeUps() - wakeUps) / seconds};
}

void Bench::tellCost(const char* state, const ChildProgram& program) {
    const auto cost = costOf(program);
    std::printf("  %-52s %8.2f ms/s %8.1f wake-ups/s %8.1f MiB\n", state, cost.processorMilliseconds,
                cost.wakeUps, static_cast<double>(program.proportionalMemory()) / 1024);
    std::fflush(stdout);
}

void Bench::neighbours() {
    {
        tray_.forget();
        const auto daemon = start({neighbourDaemon});
        const auto indicator = start({"kdeconnect-indicator"});
        waitFor([this] { return tray_.hasIcon(); }, "kdeconnect-indicator");
        tellCost("kdeconnectd", daemon);
        tellCost("kdeconnect-indicator", indicator);
    }
    tellCost("bare tray icon", start(own("bare_tray")));
    tellCost("bare tray icon with a timer of 66 ms", start(own("bare_tray", {"--tick"})));
    tellCost("bare window", start(own("bare_window")));
    tellCost("bare window, drawn without OpenGL as ours", start(bareWindowWithoutOpenGL()));
}

void Bench::openWindow() const {
    const auto later = start(own("orbinex"));
    waitFor([this] { return windows_.hasPaintedWindow(); }, "the window does not open");
}

void Bench::closeWindow() const {
    windows_.closeWindow();
    waitFor([this] { return !windows_.hasWindow(); }, "the window does not close");
}

void Bench::windowOpenAndClosed() {
    const auto program = start(own("orbinex", {"--at-login"}));
    tellCost("orbinex, searching, window never opened", program);
    openWindow();
    tellCost("orbinex, searching, window open", program);
    closeWindow();
    std::this_thread::sleep_for(unusedLifetime);
    tellCost("orbinex, searching, window closed again", program);
}

void Bench::openEditor(EditorFolder& editor, const ClipLibrary& clips) const {
    EditorSession session;
    const auto paths = clips.copies(clips.clip(".wav"), meteredTracks);
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const auto number = std::to_string(i + 1);
        session.tracks.push_back(
            {.name = "Track " + number,
             .clips = {
                 {.name = "Clip " + number, .start = 0, .finish = clipSeconds * 24, .path = paths[i]}}});
    }
    editor.open(session);
    editor.play(0, 1);
}

void Bench::connectedAndMetering() {
    auto program = start(own("orbinex", {"--at-login", "--script-host", programs_ / "fuscript"}));
    require(program.hasPrinted("Searching for iPhones running Orbinex…", 20s), "it does not search");
    std::this_thread::sleep_for(settling);
    program.send("connect iPhone");
    require(program.hasPrinted("Connected to iPhone", 20s), "it does not connect");
    tellCost("orbinex, connected, no editor", program);
    openWindow();
    tellCost("orbinex, connected, no editor, window open", program);
    closeWindow();

    const ClipLibrary clips(clipSeconds);
    EditorFolder editor(desk_.folder / "editor");
    openEditor(editor, clips);
    // Recognised by the name of its process.
    const auto standIn = desk_.folder / "resolve";
    std::filesystem::copy_file("/bin/sleep", standIn);
    const auto resolve = start({standIn, "1000"});
    tellCost("orbinex, connected, meters of eight tracks that play", program);
    require(program.firstChild() > 0, "the script does not run");
}

void Bench::run() {
    const auto hasIcon = [this] { return tray_.hasIcon(); };
    const auto hasPicture = [this] { return windows_.hasPaintedWindow(); };
    {
        const auto daemon = start({neighbourDaemon});
        std::this_thread::sleep_for(settling);
        compareStarts("tray icon", "at most 1 of kdeconnect-indicator, 0.5 aimed at",
                      {{"orbinex --at-login", own("orbinex", {"--at-login"})},
                       {"bare tray icon", own("bare_tray")},
                       {"kdeconnect-indicator", {"kdeconnect-indicator"}}},
                      hasIcon);
    }
    compareStarts("window's first picture", "at most 1.5 of a bare window",
                  {{"orbinex", own("orbinex")},
                   {"bare window", own("bare_window")},
                   {"bare window, drawn without OpenGL as ours", bareWindowWithoutOpenGL()}},
                  hasPicture);
    std::printf(
        "\nOver %lld s, and proportional memory (wanted, while it waits: under 20 wake-ups and 1 ms a "
        "second,\n"
        "and before the window at most 1.5 of the bare tray icon's memory):\n",
        static_cast<long long>(watched.count()));
    neighbours();
    windowOpenAndClosed();
    connectedAndMetering();
}

}  // namespace
}  // namespace orbinex

int main(int argc, char** argv) {
    using namespace orbinex;
    // The phone's process is made before this one has threads.
    Desk desk;
    const QCoreApplication application(argc, argv);
    try {
        Bench(desk, std::filesystem::absolute(argv[0]).parent_path()).run();
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "bench_process: %s\n", fault.what());
        return 1;
    }
    return 0;
}
