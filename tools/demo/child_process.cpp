#include "child_process.h"

#include <csignal>

#include <sys/prctl.h>

namespace orbinex::demo {

namespace {
constexpr int endLimitMilliseconds = 2000;
}

ChildProcess::ChildProcess(const QString& program, const QStringList& arguments,
                           const QProcessEnvironment& environment, const QString& logFile, Streams streams) {
    process_.setProgram(program);
    process_.setArguments(arguments);
    process_.setProcessEnvironment(environment);
    if (streams == Streams::toLog) {
        process_.setStandardInputFile(QProcess::nullDevice());
        process_.setProcessChannelMode(QProcess::MergedChannels);
        process_.setStandardOutputFile(logFile, QIODevice::Append);
    } else {
        process_.setStandardErrorFile(logFile, QIODevice::Append);
    }
    process_.setChildProcessModifier([] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        // An interrupt from the keyboard is the demo's alone, which then ends its children in order.
        ::signal(SIGINT, SIG_IGN);
    });
    process_.start();
}

ChildProcess::~ChildProcess() {
    if (!isRunning()) return;
    process_.terminate();
    if (process_.waitForFinished(endLimitMilliseconds)) return;
    process_.kill();
    process_.waitForFinished(endLimitMilliseconds);
}

bool ChildProcess::hasSucceeded() const {
    return !isRunning() && process_.error() == QProcess::UnknownError &&
           process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0;
}

}  // namespace orbinex::demo
