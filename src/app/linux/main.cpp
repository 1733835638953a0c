// The program: the one place where the parts are put together.

#include <QCoreApplication>
#include <cstdio>
#include <system_error>

#include "app/app_coordinator.h"
#include "app/linux/absent_bluetooth.h"
#include "app/linux/computer_name.h"
#include "app/linux/fd_watch.h"
#include "app/linux/qt_main_queue.h"
#include "app/linux/settings_defaults.h"
#include "app/linux/unix_signals.h"
#include "editor_bridge/idle_editor_bridge.h"
#include "input/uinput/uinput_scroll.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"

namespace {

void say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    using namespace orbinex;
    QCoreApplication application(argc, argv);
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
    AbsentBluetooth central(queue);
    WakeNotifier wake;
    IdleEditorBridge bridge;
    AppCoordinator coordinator(preferences,
                               {queue, defaults, central, wake, poster, layouts, bridge, computerName});

    say(*coordinator.centralManager.statusMessage);
    const auto lines = coordinator.centralManager.statusMessage.onDidChange(say);
    const auto alerts =
        coordinator.centralManager.alert.onDidChange([](const std::optional<BLEAlert>& alert) {
            if (alert) say(alert->title + ": " + alert->message);
        });
    const int result = QCoreApplication::exec();
    return result != 0 ? result : status;
}
