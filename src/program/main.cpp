// The program: the one place where the parts are put together.

#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "app/app_coordinator.h"
#include "app/app_delegate.h"
#include "app/linux/application_id.h"
#include "app/linux/autostart_entry.h"
#include "app/linux/computer_name.h"
#include "app/linux/fd_watch.h"
#include "app/linux/linux_editor_bridge.h"
#include "app/linux/linux_shell.h"
#include "app/linux/qt_main_queue.h"
#include "app/linux/runtime_folder.h"
#include "app/linux/settings_defaults.h"
#include "app/linux/single_instance.h"
#include "app/linux/standard_input.h"
#include "app/linux/standard_streams.h"
#include "app/linux/system_bus.h"
#include "app/linux/unix_signals.h"
#include "app/product_version.h"
#include "app/terminal_console.h"
#include "app/terminal_prompt.h"
#include "app/terminal_text.h"
#include "app/two_prompts.h"
#include "app/x11/x11_input_permission.h"
#include "input/uinput/uinput_scroll.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "link/bluez/bluez_central.h"
#include "link/bluez/logind_wake.h"
#include "ui/interface.h"

namespace {

using namespace orbinex;

void say(const std::string& line) {
    std::printf("%s\n", terminalText(line).c_str());
    std::fflush(stdout);
}

struct Options {
    QString adapter;
    bool isLoginLaunch = false;
    LinuxEditorBridge::Places places = LinuxEditorBridge::usualPlaces();
};

Options parse(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Makes an iPhone the trackpad, keyboard and editing surface of this computer.");
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption adapter("adapter", "Use only this Bluetooth adapter, such as hci0.", "name");
    const QCommandLineOption host("script-host",
                                  "The editor's scripting host, where it is not in its usual place.", "file");
    const QCommandLineOption login(QString(loginLaunchArgument).mid(2),
                                   "The start at login: no window is shown.");
    parser.addOptions({adapter, host, login});
    parser.process(application);
    Options options;
    options.adapter = parser.value(adapter);
    options.isLoginLaunch = parser.isSet(login);
    if (parser.isSet(host)) options.places.scriptHost = parser.value(host).toStdString();
    return options;
}

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

/// Nothing when this process is to go on: it is the one that runs now, or nobody can tell.
std::optional<int> endOfLaterStart(SingleInstance& instance, const std::string& startupToken) {
    switch (instance.claim(startupToken)) {
        case SingleInstance::Claim::first: return std::nullopt;
        case SingleInstance::Claim::told: return 0;
        case SingleInstance::Claim::unanswered:
            std::fprintf(stderr, "orbinex: it runs already, but does not answer. End that first.\n");
            return 1;
        case SingleInstance::Claim::unavailable: break;
    }
    std::fprintf(stderr,
                 "orbinex: cannot tell whether it runs already, as no folder is this user's alone.\n");
    return std::nullopt;
}

/// Without a display there is nobody to see windows, but --help and --version are answered.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv, bool hasDisplay) {
    if (!hasDisplay) return std::make_unique<QCoreApplication>(argc, argv);
    // Input goes to the X server in any case, and there alone a window can be put at the tray icon.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "xcb");
    Interface::prepareApplication();
    QGuiApplication::setDesktopFileName(applicationId);
    return std::make_unique<QApplication>(argc, argv);
}

}  // namespace

int main(int argc, char** argv) {
    prepareStandardStreams();
    // The application takes it out of the environment.
    auto startupToken = variable("XDG_ACTIVATION_TOKEN");
    if (startupToken.empty()) startupToken = variable("DESKTOP_STARTUP_ID");
    const auto display = X11Connection::open();
    const auto application = makeApplication(argc, argv, display != nullptr);
    QCoreApplication::setApplicationVersion(QString::fromUtf8(shortVersion.data(), shortVersion.size()));
    const Options options = parse(*application);
    SingleInstance instance(privateRuntimeFolder(variable("XDG_RUNTIME_DIR")));
    if (const auto end = endOfLaterStart(instance, startupToken)) return *end;
    QtMainQueue queue;
    int status = 0;
    const UnixSignals signals([&](int) { QCoreApplication::exit(status); });

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
    TerminalPrompt terminalPrompt(say);
    PairingQuestion pairing;
    TwoPrompts prompts(terminalPrompt, pairing);
    const SystemBus bus;
    LogindWake wake(bus.connection());
    BluezCentral central(bus.connection(), {queue, defaults, prompts, wake, options.adapter});
    LinuxEditorBridge editors(queue, options.places);

    LinuxShell shell(queue, instance, [] { QCoreApplication::quit(); });
    X11InputPermission inputPermission(*display);
    DesktopPresence presence;
    AppCoordinator coordinator(preferences,
                               {queue,
                                defaults,
                                central,
                                wake,
                                poster,
                                layouts,
                                editors.daemon(),
                                computerName,
                                {inputPermission, shell.loginItem(), shell.urls(), presence.activation()}});
    AppRelocationManager relocation(queue, defaults, shell.bundle());

    Interface face(
        {queue, coordinator, relocation, pairing, shell.urls(), presence, [] { QCoreApplication::quit(); }});

    AppDelegate delegate(preferences, relocation, [&] { face.openMainWindow(); });
    delegate.willFinishLaunching();
    delegate.didFinishLaunching(options.isLoginLaunch);
    instance.serve(queue, [&](const std::string&) { delegate.handleSecondLaunch(); });

    std::string shown = *coordinator.centralManager.statusMessage;
    say(shown);
    const auto lines = coordinator.centralManager.statusMessage.onDidChange([&](const std::string& line) {
        if (std::exchange(shown, line) != line) say(line);
    });
    const auto alerts =
        coordinator.centralManager.alert.onDidChange([](const std::optional<BLEAlert>& alert) {
            if (alert) say(alert->title + ": " + alert->message);
        });
    const auto sayMissing = [](const std::string& line) {
        if (!line.empty()) say(line);
    };
    sayMissing(*coordinator.accessibilityManager.explanation);
    const auto missing = coordinator.accessibilityManager.explanation.onDidChange(sayMissing);
    TerminalConsole console(coordinator, terminalPrompt, say, [] { QCoreApplication::quit(); });
    // Where nobody can type any more, a pairing is still asked about in the window.
    const StandardInput input(
        queue, [&](const std::string& line) { console.execute(line); }, [] {});
    const int result = QCoreApplication::exec();
    return result != 0 ? result : status;
}
