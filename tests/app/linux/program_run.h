#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <memory>
#include <string>
#include <utility>

#include <signal.h>

#include "support/private_x_server.h"

namespace orbinex::test {

/// A run of the built program with a home of its own, and without the machine's buses.
class ProgramRun {
  public:
    using Home = std::shared_ptr<QTemporaryDir>;

    struct Setting {
        /// The address of the system bus.
        QString bus = "unix:path=/nonexistent";
        /// What the shell makes of the standard streams and takes for arguments.
        QString arguments = {};
        /// Runs of one home are runs of one user.
        Home home = std::make_shared<QTemporaryDir>();
        /// What a launcher gives a program that it starts.
        QString startupToken = {};
    };

    explicit ProgramRun(const std::string& display) : ProgramRun(display, Setting()) {}
    ProgramRun(const std::string& display, Setting setting) : home_(std::move(setting.home)) {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", QString::fromStdString(display));
        for (const char* const folder : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
            environment.insert(folder, home_->path());
        environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        environment.insert("DBUS_SYSTEM_BUS_ADDRESS", setting.bus);
        environment.remove("XDG_ACTIVATION_TOKEN");
        environment.insert("DESKTOP_STARTUP_ID", setting.startupToken);
        process_.setProcessEnvironment(environment);
        process_.setProcessChannelMode(QProcess::MergedChannels);
        // As a desktop starts it, whatever the test itself was started with.
        process_.setChildProcessModifier([] {
            for (const int number : {SIGTERM, SIGINT, SIGHUP}) ::signal(number, SIG_DFL);
        });
        process_.start("sh", {"-c", "exec \"$0\" " + setting.arguments, ORBINEX_PROGRAM});
    }
    ProgramRun(const ProgramRun&) = delete;
    ProgramRun& operator=(const ProgramRun&) = delete;
    ~ProgramRun() {
        process_.kill();
        process_.waitForFinished();
    }

    [[nodiscard]] const Home& home() const { return home_; }
    void type(const char* text) {
        process_.write(text);
        process_.waitForBytesWritten(limit);
    }
    void closeInput() { process_.closeWriteChannel(); }
    void signal(int number) const { ::kill(static_cast<pid_t>(process_.processId()), number); }

    /// Waits until the condition holds, serving this process's own event loop; false when it does not hold in
    /// time, or the program ends before.
    template <class Condition>
    [[nodiscard]] bool reaches(Condition condition) {
        const QDeadlineTimer deadline(limit);
        while (!condition()) {
            if (deadline.hasExpired() || process_.state() == QProcess::NotRunning) return condition();
            process_.waitForReadyRead(turn);
            output_ += process_.readAll();
            if (QCoreApplication::instance()) QCoreApplication::processEvents();
        }
        return true;
    }
    /// Waits until the output since the text that was waited for last holds this one.
    [[nodiscard]] bool says(const std::string& text) {
        qsizetype at = -1;
        const auto isThere = [&] {
            at = output_.indexOf(text.c_str(), read_);
            return at >= 0;
        };
        if (!reaches(isThere)) return false;
        read_ = at + static_cast<qsizetype>(text.size());
        return true;
    }
    /// The exit status, or -1 when it was killed or did not end.
    [[nodiscard]] int end() {
        const auto hasEnded = [this] { return process_.state() == QProcess::NotRunning; };
        if (!reaches(hasEnded) || process_.exitStatus() != QProcess::NormalExit) return -1;
        return process_.exitCode();
    }
    [[nodiscard]] std::string output() const { return output_.toStdString(); }

  private:
    static constexpr int limit = 20'000;  // milliseconds
    static constexpr int turn = 10;

    Home home_;
    QProcess process_;
    QByteArray output_;
    qsizetype read_ = 0;
};

/// A window of the program is on the screen: the main one, or one with another title.
inline bool showsWindow(const PrivateXServer& screen, const std::string& title = "Orbinex") {
    return screen.run("xwininfo -name '" + title + "' 2>/dev/null | grep -q IsViewable");
}

}  // namespace orbinex::test
