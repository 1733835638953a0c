#pragma once

#include <QProcess>
#include <chrono>
#include <functional>

namespace orbinex::demo {

/// A program that ends with this object, and with the demo however that ends.
class ChildProcess {
  public:
    /// Starts the program with exactly this environment; what it prints goes to the log file. `inChild` runs
    /// in the new process before the program does, and may call only what is safe after fork().
    ChildProcess(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment,
                 const QString& logFile, const std::function<void()>& inChild = {});
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Asks the program to end, and makes it when it takes longer than two seconds.
    ~ChildProcess();

    [[nodiscard]] bool isRunning() const { return process_.state() != QProcess::NotRunning; }
    /// It ran and returned 0.
    [[nodiscard]] bool hasSucceeded() const;

  private:
    QProcess process_;
};

}  // namespace orbinex::demo
