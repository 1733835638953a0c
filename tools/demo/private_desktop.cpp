#include "private_desktop.h"

#include <QCoreApplication>
#include <QFile>
#include <chrono>

namespace orbinex::demo {

using namespace std::chrono_literals;

namespace {

constexpr auto commandLimit = 10s;

}  // namespace

PrivateDesktop::PrivateDesktop(EventLoop& loop, const PrivateDisplay& display)
    : loop_(loop),
      display_(display),
      places_(display.screen() == PrivateDisplay::Screen::nested ? nestedPlaces : unseenPlaces),
      environment_(display.inside()) {
    if (!writeDesktopSettings(display.home(), places_))
        throw Ended{"the folder " + display.home().toStdString() + " cannot be written"};
}

void PrivateDesktop::startWindowManager() {
    const QStringList arguments{QStringLiteral("--sm-disable"), QStringLiteral("--config-file"),
                                windowManagerSettings(display_.home())};
    windowManager_ = std::make_unique<ChildProcess>(QStringLiteral("openbox"), arguments, environment_,
                                                    path("openbox.log"));
}

void PrivateDesktop::startTray() {
    const auto arguments =
        QStringLiteral(
            "--edge top --align right --widthtype request --height 30 --transparent true --alpha 0 "
            "--tint 0x171B22")
            .split(' ');
    tray_ =
        std::make_unique<ChildProcess>(QStringLiteral("trayer"), arguments, environment_, path("tray.log"));
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
    return display_.home() + '/' + QString::fromUtf8(name);
}

}  // namespace orbinex::demo
