// The program: the one place where the parts are put together.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <system_error>

#include <unistd.h>

#include "app/app_coordinator.h"
#include "app/linux/computer_name.h"
#include "app/linux/fd_watch.h"
#include "app/linux/qt_main_queue.h"
#include "app/linux/settings_defaults.h"
#include "app/linux/unix_signals.h"
#include "app/terminal_console.h"
#include "app/terminal_prompt.h"
#include "base/line_reader.h"
#include "editor_bridge/idle_editor_bridge.h"
#include "input/uinput/uinput_scroll.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "link/bluez/bluez_central.h"
#include "link/bluez/logind_wake.h"

namespace {

using namespace orbinex;

/// Names come from the air: what could move the cursor or end the line is replaced.
void say(const std::string& line) {
    std::string shown;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const auto byte = static_cast<unsigned char>(line[i]);
        const bool isSecondSet =
            byte == 0xc2 && i + 1 < line.size() && static_cast<unsigned char>(line[i + 1]) < 0xa0;
        if (isSecondSet) ++i;
        shown += byte < 0x20 || byte == 0x7f || isSecondSet ? '?' : line[i];
    }
    std::printf("%s\n", shown.c_str());
    std::fflush(stdout);
}

/// Hands what is typed to the console, until standard input ends. A program in the background of a terminal
/// may not read there: it goes on without.
class TerminalInput {
  public:
    TerminalInput(MainQueue& queue, TerminalConsole& console, TerminalPrompt& prompt) {
        std::signal(SIGTTIN, SIG_IGN);
        watch_.emplace(STDIN_FILENO, [this, &queue, &console, &prompt] {
            std::array<char, 4096> bytes{};
            const auto count = read(STDIN_FILENO, bytes.data(), bytes.size());
            if (count > 0) {
                for (const auto& line : lines_.take({bytes.data(), static_cast<std::size_t>(count)})) {
                    console.execute(line);
                }
                return;
            }
            if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
            prompt.inputEnded();
            // Not at once: the watch is what is calling.
            queue.post([this] { watch_.reset(); });
        });
    }

  private:
    LineReader lines_;
    std::optional<FdWatch> watch_;
};

QString adapterWanted(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription("Makes an iPhone the trackpad and keyboard of this computer.");
    parser.addHelpOption();
    const QCommandLineOption adapter("adapter", "Use only this Bluetooth adapter, such as hci0.", "name");
    parser.addOption(adapter);
    parser.process(application);
    return parser.value(adapter);
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QString adapter = adapterWanted(application);
    QtMainQueue queue;
    int status = 0;
    const UnixSignals signals([&](int) { QCoreApplication::exit(status); });

    const auto display = X11Connection::open();
    if (!display) {
        std::fprintf(stderr,
                     "orbinex: no X display. Start it in a graphical session, or set DISPLAY to one.\n");
        return 1;
    }
    SettingsDefaults defaults;
    AppPreferences preferences(defaults);
    std::error_code whyNoDevice;
    const auto scrollDevice = UinputScroll::open(whyNoDevice);
    if (!scrollDevice)
        std::fprintf(stderr, "orbinex: scrolling by whole wheel clicks, as /dev/uinput cannot be used: %s.\n",
                     whyNoDevice.message().c_str());
    X11EventPoster poster(*display, queue,
                          {.commandKey = preferences.commandKey(), .scrollSink = scrollDevice.get()});
    X11KeyboardLayoutSource layouts(*display, queue);
    const FdWatch displayEvents(display->fd(), [&] {
        display->processEvents();
        if (display->isAlive()) return;
        std::fprintf(stderr, "orbinex: the X display is gone.\n");
        status = 1;
        QCoreApplication::exit(status);
    });
    TerminalPrompt prompt(say);
    LogindWake wake(QDBusConnection::systemBus());
    BluezCentral central(QDBusConnection::systemBus(), {queue, defaults, prompt, wake, adapter});
    IdleEditorBridge bridge;
    AppCoordinator coordinator(preferences,
                               {queue, defaults, central, wake, poster, layouts, bridge, computerName});

    std::string shown = *coordinator.centralManager.statusMessage;
    say(shown);
    const auto lines = coordinator.centralManager.statusMessage.onDidChange([&](const std::string& line) {
        if (std::exchange(shown, line) != line) say(line);
    });
    const auto alerts =
        coordinator.centralManager.alert.onDidChange([](const std::optional<BLEAlert>& alert) {
            if (alert) say(alert->title + ": " + alert->message);
        });
    TerminalConsole console(coordinator, prompt, say, [] { QCoreApplication::quit(); });
    const TerminalInput input(queue, console, prompt);
    const int result = QCoreApplication::exec();
    return result != 0 ? result : status;
}
