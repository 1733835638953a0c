// The program: the one place where the parts are put together.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <unistd.h>

#include "app/app_coordinator.h"
#include "app/app_delegate.h"
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
#include "app/plain_line.h"
#include "app/product_version.h"
#include "app/reporting_url_opener.h"
#include "app/terminal_console.h"
#include "app/terminal_prompt.h"
#include "app/terminal_report.h"
#include "app/two_prompts.h"
#include "app/x11/x11_input_permission.h"
#include "input/uinput/uinput_scroll.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "link/bluez/bluez_central.h"
#include "link/bluez/logind_wake.h"
#include "program/desktop_application.h"
#include "program/start_failure.h"
#include "ui/interface.h"

namespace {

using namespace orbinex;

void say(const std::string& line) {
    std::printf("%s\n", plainLine(line).c_str());
    std::fflush(stdout);
}

struct Options {
    QString adapter;
    bool isLoginLaunch = false;
    bool isQuit = false;
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
    const QCommandLineOption end(QString(quitArgument).mid(2), "Ends the Orbinex that runs.");
    parser.addOptions({adapter, host, login, end});
    parser.process(application);
    Options options;
    options.adapter = parser.value(adapter);
    options.isLoginLaunch = parser.isSet(login);
    options.isQuit = parser.isSet(end);
    if (parser.isSet(host)) options.places.scriptHost = parser.value(host).toStdString();
    return options;
}

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

/// How this process was started.
struct Start {
    /// What the desktop gives a program that it starts; empty without.
    std::string token;
    bool hasServer = false;
    bool isAtLogin = false;

    /// By a person who sees windows, and no terminal. Terminals may have the token of their own start.
    [[nodiscard]] bool isByLauncher() const {
        return hasServer && !isAtLogin && !token.empty() && ::isatty(STDERR_FILENO) == 0;
    }
};

/// Nothing when this process is to go on: it is the one that runs now, or nobody can tell.
std::optional<int> endOfLaterStart(SingleInstance& instance, const Start& start) {
    // At login there is nothing to show.
    const auto token = start.isAtLogin ? std::nullopt : std::optional<std::string_view>(start.token);
    switch (instance.claim(token)) {
        case SingleInstance::Claim::first: return std::nullopt;
        case SingleInstance::Claim::told: return 0;
        case SingleInstance::Claim::unanswered:
            tellStartFailure("Orbinex runs already, but does not answer. End that one first.",
                             start.isByLauncher());
            return 1;
        case SingleInstance::Claim::unavailable: break;
    }
    std::fprintf(stderr,
                 "orbinex: cannot tell whether it runs already, as no folder is this user's alone.\n");
    return std::nullopt;
}

std::string whyNoDisplay(X11Connection::Obstacle obstacle) {
    const auto missing = [](const std::string& extension) {
        return "The X server does not offer the " + extension +
               " extension, which Orbinex cannot do without. Turn that on in the server's configuration, and "
               "log in again.";
    };
    switch (obstacle) {
        case X11Connection::Obstacle::noKeyboardExtension: return missing("XKEYBOARD");
        case X11Connection::Obstacle::noScreenExtension: return missing("RANDR 1.5");
        case X11Connection::Obstacle::none:
        case X11Connection::Obstacle::noServer: break;
    }
    return "There is no X display. Start Orbinex in a graphical session, or set DISPLAY to one.";
}

void tellSettingsAreNotStored(const std::string& file) {
    std::fprintf(stderr, "orbinex: cannot write %s; what is changed now is forgotten when it ends.\n",
                 plainLine(file).c_str());
}

/// Its parts, each made of those above it.
class Program {
  public:
    Program(X11Connection& display, SingleInstance& instance, const Options& options)
        : display_(display), instance_(instance), options_(options) {}

    /// Returns when the person, a signal or the display ends it; the exit status.
    int run(const std::string& startupToken) {
        // Whoever has asked for this start sees its window in front; a copy that takes over, too.
        presence_.setStartupToken(startupToken);
        shell_.loginItem().repair();
        delegate_.willFinishLaunching();
        delegate_.didFinishLaunching(options_.isLoginLaunch);
        instance_.serve(queue_, {[this](const std::string& token) {
                                     presence_.setStartupToken(token);
                                     delegate_.handleSecondLaunch();
                                 },
                                 quit});
        const TerminalReport report(coordinator_, say);
        TerminalConsole console(coordinator_, terminalPrompt_, say, quit);
        // Where nobody can type any more, a pairing is still asked about in the window.
        const StandardInput input(queue_, [&](const std::string& line) { console.execute(line); });
        return QCoreApplication::exec();
    }

  private:
    /// Not by closing the windows first, as quit() does.
    static void quit() { QCoreApplication::exit(); }

    static std::unique_ptr<UinputScroll> openScrollDevice() {
        std::error_code whyNot;
        auto device = UinputScroll::open(whyNot);
        if (!device)
            std::fprintf(stderr,
                         "orbinex: scrolling by whole wheel clicks, as /dev/uinput cannot be used: %s.\n",
                         whyNot.message().c_str());
        return device;
    }

    void handleDisplay() {
        display_.processEvents();
        if (display_.isAlive()) return;
        std::fprintf(stderr, "orbinex: the X display is gone.\n");
        QCoreApplication::exit(1);
    }

    X11Connection& display_;
    SingleInstance& instance_;
    const Options& options_;
    QtMainQueue queue_;
    const UnixSignals signals_{[](int) { quit(); }};
    SettingsDefaults defaults_{tellSettingsAreNotStored};
    AppPreferences preferences_{defaults_};

    std::unique_ptr<UinputScroll> scrollDevice_ = openScrollDevice();
    X11EventPoster poster_{
        display_, queue_, {.commandKey = preferences_.commandKey(), .scrollSink = scrollDevice_.get()}};
    X11KeyboardLayoutSource layouts_{display_, queue_};
    const FdWatch displayEvents_{display_.fd(), [this] { handleDisplay(); }};

    TerminalPrompt terminalPrompt_{say};
    PairingQuestion pairing_;
    TwoPrompts prompts_{terminalPrompt_, pairing_};
    const SystemBus bus_;
    LogindWake wake_{bus_.connection()};
    BluezCentral central_{bus_.connection(), {queue_, defaults_, prompts_, wake_, options_.adapter}};

    LinuxEditorBridge editors_{queue_, options_.places};
    DesktopPresence presence_;
    LinuxShell shell_{queue_, instance_, {[this] { return presence_.launchToken(); }, quit}};
    ReportingUrlOpener urls_{shell_.urls()};
    X11InputPermission inputPermission_{display_};
    AppCoordinator coordinator_{preferences_,
                                {queue_,
                                 defaults_,
                                 central_,
                                 wake_,
                                 poster_,
                                 layouts_,
                                 editors_.daemon(),
                                 computerName,
                                 {inputPermission_, shell_.loginItem(), urls_, presence_.activation()}}};
    AppRelocationManager relocation_{queue_, defaults_, shell_.bundle()};
    Interface face_{{queue_, defaults_, coordinator_, relocation_, pairing_, urls_, presence_, quit}};
    AppDelegate delegate_{preferences_, relocation_, [this] { face_.openMainWindow(); }};
};

}  // namespace

int main(int argc, char** argv) {
    prepareStandardStreams();
    // The application takes it out of the environment.
    Start start{.token = variable("XDG_ACTIVATION_TOKEN")};
    if (start.token.empty()) start.token = variable("DESKTOP_STARTUP_ID");
    auto obstacle = X11Connection::Obstacle::none;
    const auto display = X11Connection::open({}, &obstacle);
    start.hasServer = obstacle != X11Connection::Obstacle::noServer;
    const auto application = makeApplication(argc, argv, start.hasServer);
    QCoreApplication::setApplicationVersion(QString::fromUtf8(shortVersion.data(), shortVersion.size()));
    const Options options = parse(*application);
    start.isAtLogin = options.isLoginLaunch;
    SingleInstance instance(privateRuntimeFolder(variable("XDG_RUNTIME_DIR")));
    if (options.isQuit) return instance.askToQuit() ? 0 : 1;
    if (const auto end = endOfLaterStart(instance, start)) return *end;
    if (!display) {
        tellStartFailure(whyNoDisplay(obstacle), start.isByLauncher());
        return 1;
    }
    return Program(*display, instance, options).run(start.token);
}
