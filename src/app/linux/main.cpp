// The program: the one place where the parts are put together.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "app/app_coordinator.h"
#include "app/linux/computer_name.h"
#include "app/linux/fd_watch.h"
#include "app/linux/linux_editor_bridge.h"
#include "app/linux/qt_main_queue.h"
#include "app/linux/settings_defaults.h"
#include "app/linux/standard_input.h"
#include "app/linux/standard_streams.h"
#include "app/linux/system_bus.h"
#include "app/linux/unix_signals.h"
#include "app/terminal_console.h"
#include "app/terminal_prompt.h"
#include "app/terminal_text.h"
#include "input/uinput/uinput_scroll.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "link/bluez/bluez_central.h"
#include "link/bluez/logind_wake.h"

namespace {

using namespace orbinex;

void say(const std::string& line) {
    std::printf("%s\n", terminalText(line).c_str());
    std::fflush(stdout);
}

struct Options {
    QString adapter;
    LinuxEditorBridge::Places places = LinuxEditorBridge::usualPlaces();
};

Options parse(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Makes an iPhone the trackpad, keyboard and editing surface of this computer.");
    parser.addHelpOption();
    const QCommandLineOption adapter("adapter", "Use only this Bluetooth adapter, such as hci0.", "name");
    const QCommandLineOption host("script-host",
                                  "The editor's scripting host, where it is not in its usual place.", "file");
    parser.addOptions({adapter, host});
    parser.process(application);
    Options options;
    options.adapter = parser.value(adapter);
    if (parser.isSet(host)) options.places.scriptHost = parser.value(host).toStdString();
    return options;
}

}  // namespace

int main(int argc, char** argv) {
    prepareStandardStreams();
    const QCoreApplication application(argc, argv);
    const Options options = parse(application);
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
    const SystemBus bus;
    LogindWake wake(bus.connection());
    BluezCentral central(bus.connection(), {queue, defaults, prompt, wake, options.adapter});
    LinuxEditorBridge editors(queue, options.places);
    AppCoordinator coordinator(
        preferences, {queue, defaults, central, wake, poster, layouts, editors.daemon(), computerName});

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
    const StandardInput input(
        queue, [&](const std::string& line) { console.execute(line); }, [&] { prompt.inputEnded(); });
    const int result = QCoreApplication::exec();
    return result != 0 ? result : status;
}
