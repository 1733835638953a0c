#pragma once

#include <QProcess>

namespace orbinex::demo {

/// A program that ends with this object, and with the demo however that ends.
class ChildProcess {
  public:
    enum class Streams {
        toLog,  ///< what it prints goes to the log file, and it reads nothing
        piped,  ///< only its errors go to the log file; the rest goes through pipe()
    };
    /// Starts the program with exactly this environment.
    ChildProcess(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment,
                 const QString& logFile, Streams streams = Streams::toLog);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Asks the program to end, and makes it when it takes longer than two seconds.
    ~ChildProcess();

    [[nodiscard]] bool isRunning() const { return process_.state() != QProcess::NotRunning; }
    /// It ran and returned 0.
    [[nodiscard]] bool hasSucceeded() const;
    /// Its standard streams, where they are piped.
    [[nodiscard]] QProcess& pipe() { return process_; }

  private:
    QProcess process_;
};

}  // namespace orbinex::demo
