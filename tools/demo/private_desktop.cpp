#include "private_desktop.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <array>
#include <chrono>

#include <fcntl.h>
#include <unistd.h>

#include "desktop_settings.h"

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

constexpr auto startLimit = 20s;
constexpr auto commandLimit = 10s;

/// Nothing of the user's session but the way to the programs.
QProcessEnvironment environmentIn(const QString& home) {
    QProcessEnvironment result;
    const QString path = QProcessEnvironment::systemEnvironment().value(
        QStringLiteral("PATH"), QStringLiteral("/usr/local/bin:/usr/bin:/bin"));
    result.insert(QStringLiteral("PATH"), path);
    result.insert(QStringLiteral("HOME"), home);
    result.insert(QStringLiteral("TMPDIR"), home);
    result.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
    result.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/config"));
    result.insert(QStringLiteral("XDG_CACHE_HOME"), home + QStringLiteral("/cache"));
    result.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/data"));
    result.insert(QStringLiteral("XDG_STATE_HOME"), home + QStringLiteral("/state"));
    result.insert(QStringLiteral("XDG_RUNTIME_DIR"), home);
    // The editor keeps its settings in a file of its own and asks no session bus for anything.
    result.insert(QStringLiteral("GSETTINGS_BACKEND"), QStringLiteral("keyfile"));
    result.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("disabled:"));
    result.insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));
    result.insert(QStringLiteral("GTK_IM_MODULE"), QStringLiteral("gtk-im-context-simple"));
    return result;
}

/// The line that the server writes once it accepts connections, as far as it has come.
class DisplayNumber {
  public:
    DisplayNumber() {
        if (::pipe2(ends_.data(), O_CLOEXEC | O_NONBLOCK) != 0) throw Ended{"there is no pipe to be had"};
    }
    DisplayNumber(const DisplayNumber&) = delete;
    DisplayNumber& operator=(const DisplayNumber&) = delete;
    ~DisplayNumber() {
        for (const int end : ends_) ::close(end);
    }

    [[nodiscard]] int writeEnd() const { return ends_[1]; }
    /// True when the line is complete.
    bool read() {
        char c = 0;
        while (::read(ends_[0], &c, 1) == 1) {
            if (c == '\n') return true;
            text_.push_back(c);
        }
        return false;
    }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::array<int, 2> ends_{};
    std::string text_;
};

}  // namespace

PrivateDesktop::PrivateDesktop(EventLoop& loop, Screen screen)
    : loop_(loop),
      folder_(QDir::tempPath() + QStringLiteral("/orbinex-demo-XXXXXX")),
      environment_(environmentIn(folder_.path())) {
    if (!folder_.isValid() || !writeDesktopSettings(path("config"))) {
        throw Ended{"a folder in " + QDir::tempPath().toStdString() + " cannot be written"};
    }
    startServer(screen);
    display_.insert(0, ":");
    environment_.insert(QStringLiteral("DISPLAY"), QString::fromStdString(display_));
}

void PrivateDesktop::startServer(Screen screen) {
    DisplayNumber number;
    const int fd = number.writeEnd();
    QStringList arguments{QStringLiteral("-displayfd"), QString::number(fd), QStringLiteral("-noreset"),
                          QStringLiteral("-nolisten"), QStringLiteral("tcp")};
    QString program = QStringLiteral("Xvfb");
    QProcessEnvironment environment = environment_;
    if (screen == Screen::nested) {
        program = QStringLiteral("Xephyr");
        // Its window is the one thing that appears on the user's display.
        environment = QProcessEnvironment::systemEnvironment();
        arguments << QStringLiteral("-screen") << QStringLiteral("1280x800") << QStringLiteral("-title")
                  << QStringLiteral("Orbinex demo");
    } else {
        arguments << QStringLiteral("-screen") << QStringLiteral("0") << QStringLiteral("1280x800x24");
    }
    server_ = std::make_unique<ChildProcess>(program, arguments, environment, path("server.log"),
                                             [fd] { ::fcntl(fd, F_SETFD, 0); });
    const bool isComplete = loop_.waitUntil(
        [&] { return number.read() || (!server_->isRunning() && number.text().empty()); }, startLimit);
    if (!isComplete || number.text().empty()) {
        QFile log(path("server.log"));
        const bool isOpen = log.open(QIODevice::ReadOnly);
        throw Ended{program.toStdString() + " cannot be started. " +
                    (isOpen ? log.readAll().toStdString() : "")};
    }
    display_ = number.text();
}

void PrivateDesktop::startWindowManager() {
    const QStringList arguments{QStringLiteral("--sm-disable"), QStringLiteral("--config-file"),
                                windowManagerSettings(path("config"))};
    windowManager_ = std::make_unique<ChildProcess>(QStringLiteral("openbox"), arguments, environment_,
                                                    path("openbox.log"));
}

void PrivateDesktop::startEditor() {
    QFile letter(path("letter.txt"));
    if (!letter.open(QIODevice::WriteOnly)) throw Ended{"the letter cannot be written"};
    letter.close();
    const QStringList arguments{QStringLiteral("--disable-server"), letter.fileName()};
    editor_ = std::make_unique<ChildProcess>(QStringLiteral("mousepad"), arguments, environment_,
                                             path("editor.log"));
}

void PrivateDesktop::startSoundServer() {
    const QString protocol =
        QStringLiteral("module-native-protocol-unix auth-anonymous=1 auth-cookie-enabled=0 socket=") +
        path("sound");
    const QStringList arguments{QStringLiteral("-n"),
                                QStringLiteral("--daemonize=no"),
                                QStringLiteral("--exit-idle-time=-1"),
                                QStringLiteral("-L"),
                                QStringLiteral("module-null-sink sink_name=output"),
                                QStringLiteral("-L"),
                                protocol};
    soundServer_ = std::make_unique<ChildProcess>(QStringLiteral("pulseaudio"), arguments, environment_,
                                                  path("sound.log"));
    environment_.insert(QStringLiteral("PULSE_SERVER"), QString::fromStdString(soundServer()));
}

std::string PrivateDesktop::soundServer() const {
    return "unix:" + path("sound").toStdString();
}

std::string PrivateDesktop::outputVolume() {
    QFile::remove(path("commands.log"));
    if (!run("pactl", {QStringLiteral("get-sink-volume"), QStringLiteral("output")})) return {};
    QFile log(path("commands.log"));
    if (!log.open(QIODevice::ReadOnly)) return {};
    const QByteArray text = log.readAll();
    const auto end = text.indexOf('%');
    return end < 0 ? std::string() : text.left(end).split(' ').last().toStdString();
}

void PrivateDesktop::startEditingApplication(const std::string& folder, double fps) {
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/editor_window");
    const QStringList arguments{QString::fromStdString(folder), QString::number(fps)};
    editingApplication_ =
        std::make_unique<ChildProcess>(program, arguments, environment_, path("editing.log"));
}

bool PrivateDesktop::run(const char* program, const QStringList& arguments) {
    const ChildProcess child(QString::fromUtf8(program), arguments, environment_, path("commands.log"));
    return loop_.waitUntil([&] { return !child.isRunning(); }, commandLimit) && child.hasSucceeded();
}

bool PrivateDesktop::setKeyboardLayout(const char* layout, const char* variant) {
    return run("setxkbmap", {QStringLiteral("-layout"), QString::fromUtf8(layout), QStringLiteral("-variant"),
                             QString::fromUtf8(variant)});
}

bool PrivateDesktop::setBackground(const char* colour) {
    return run("xsetroot", {QStringLiteral("-solid"), QString::fromUtf8(colour)});
}

bool PrivateDesktop::takePicture(const std::string& file) {
    return run("import",
               {QStringLiteral("-window"), QStringLiteral("root"), QString::fromStdString("png:" + file)});
}

std::string PrivateDesktop::savedText() const {
    QFile letter(path("letter.txt"));
    return letter.open(QIODevice::ReadOnly) ? letter.readAll().toStdString() : std::string();
}

QString PrivateDesktop::path(const char* name) const {
    return folder_.filePath(QString::fromUtf8(name));
}

}  // namespace orbinex::demo
