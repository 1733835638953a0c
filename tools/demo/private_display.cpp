#include "private_display.h"

#include <QDir>
#include <QFile>
#include <array>
#include <csignal>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "event_loop.h"

namespace orbinex::demo {

namespace {

constexpr int startLimitMilliseconds = 20'000;
constexpr const char* unseenSize = "1720x1000x24";
constexpr const char* nestedSize = "1280x800";

/// What tells how programs are run, not whose session it is.
bool isOfTheSystem(const QString& name) {
    return name == QLatin1String("PATH") || name.startsWith(QLatin1String("LD_")) ||
           name.endsWith(QLatin1String("SAN_OPTIONS"));
}

QProcessEnvironment environmentIn(const QString& home) {
    QProcessEnvironment result;
    result.insert(QStringLiteral("PATH"), QStringLiteral("/usr/local/bin:/usr/bin:/bin"));
    const auto outside = QProcessEnvironment::systemEnvironment();
    for (const auto& name : outside.keys())
        if (isOfTheSystem(name)) result.insert(name, outside.value(name));
    result.insert(QStringLiteral("HOME"), home);
    result.insert(QStringLiteral("TMPDIR"), home);
    result.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
    result.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/config"));
    result.insert(QStringLiteral("XDG_CACHE_HOME"), home + QStringLiteral("/cache"));
    result.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/data"));
    result.insert(QStringLiteral("XDG_STATE_HOME"), home + QStringLiteral("/state"));
    result.insert(QStringLiteral("XDG_RUNTIME_DIR"), home);
    // Programs keep their settings in files of their own and ask no session bus for anything.
    result.insert(QStringLiteral("GSETTINGS_BACKEND"), QStringLiteral("keyfile"));
    result.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("disabled:"));
    result.insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));
    result.insert(QStringLiteral("GTK_IM_MODULE"), QStringLiteral("gtk-im-context-simple"));
    result.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    return result;
}

/// The first line that arrives; empty when the other end closes or is too slow.
std::string readLine(int fd) {
    std::string line;
    for (;;) {
        pollfd waiting{fd, POLLIN, 0};
        char c = 0;
        if (::poll(&waiting, 1, startLimitMilliseconds) <= 0 || ::read(fd, &c, 1) != 1) return {};
        if (c == '\n') return line;
        line.push_back(c);
    }
}

[[noreturn]] void becomeServer(const std::vector<std::string>& command, int logFile) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // An interrupt from the keyboard is the demo's alone, which then ends the server in order.
    ::signal(SIGINT, SIG_IGN);
    ::dup2(logFile, STDOUT_FILENO);
    ::dup2(logFile, STDERR_FILENO);
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
}

}  // namespace

PrivateDisplay::PrivateDisplay(Screen screen)
    : screen_(screen),
      home_(QDir::tempPath() + QStringLiteral("/orbinex-demo-XXXXXX")),
      outside_(QProcessEnvironment::systemEnvironment()),
      inside_(environmentIn(home_.path())) {
    if (!home_.isValid()) throw Ended{"a folder in " + QDir::tempPath().toStdString() + " cannot be written"};
    startServer();
    inside_.insert(QStringLiteral("DISPLAY"), QString::fromStdString(name_));
}

PrivateDisplay::~PrivateDisplay() {
    endServer();
}

void PrivateDisplay::startServer() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw Ended{"there is no pipe to be had"};
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    std::vector<std::string> command{"Xvfb", "-screen", "0", unseenSize};
    // The nested server's window is, beside the phone's, what appears on the user's display.
    if (screen_ == Screen::nested) command = {"Xephyr", "-screen", nestedSize, "-title", "Orbinex demo"};
    command.insert(command.end(), {"-displayfd", std::to_string(ends[1]), "-noreset", "-nolisten", "tcp"});
    const QString log = home_.filePath(QStringLiteral("server.log"));
    const int logFile = ::open(QFile::encodeName(log).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    server_ = ::fork();
    if (server_ == 0) becomeServer(command, logFile);
    ::close(logFile);
    ::close(ends[1]);
    const std::string number = server_ > 0 ? readLine(ends[0]) : std::string();
    ::close(ends[0]);
    if (!number.empty()) {
        name_ = ":" + number;
        return;
    }
    endServer();
    QFile said(log);
    const bool isOpen = said.open(QIODevice::ReadOnly);
    throw Ended{command[0] + " cannot be started. " + (isOpen ? said.readAll().toStdString() : "")};
}

void PrivateDisplay::endServer() {
    if (server_ <= 0) return;
    ::kill(server_, SIGTERM);
    ::waitpid(server_, nullptr, 0);
    server_ = -1;
}

void PrivateDisplay::moveIn() const {
    for (const auto& name : outside_.keys())
        if (!inside_.contains(name)) qunsetenv(name.toLocal8Bit().constData());
    for (const auto& name : inside_.keys())
        qputenv(name.toLocal8Bit().constData(), inside_.value(name).toLocal8Bit());
}

}  // namespace orbinex::demo
