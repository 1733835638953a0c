#include "private_bus.h"

#include <QFile>
#include <array>
#include <csignal>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orbinex::test {

namespace {

constexpr const char* configuration = R"(<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

[[noreturn]] void becomeBus(const std::string& file, int addressFd) {
    // A test that crashes must not leave its bus behind.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int null = ::open("/dev/null", O_WRONLY);
    ::dup2(null, STDERR_FILENO);
    const auto config = "--config-file=" + file;
    const auto print = "--print-address=" + std::to_string(addressFd);
    ::execlp("dbus-daemon", "dbus-daemon", "--nofork", "--nopidfile", config.c_str(), print.c_str(),
             static_cast<char*>(nullptr));
    ::_exit(127);
}

}  // namespace

PrivateBus::PrivateBus() {
    QFile file(directory_.filePath("bus.conf"));
    std::array<int, 2> ends{};
    if (!file.open(QFile::WriteOnly) || ::pipe(ends.data()) != 0)
        throw std::runtime_error("no room for a bus");
    file.write(QString(configuration).arg(directory_.path()).toUtf8());
    file.close();
    const auto name = file.fileName().toStdString();
    pid_ = ::fork();
    if (pid_ == 0) becomeBus(name, ends[1]);
    ::close(ends[1]);
    std::array<char, 512> line{};
    const auto size = ::read(ends[0], line.data(), line.size());
    ::close(ends[0]);
    address_ = QString::fromUtf8(line.data(), size > 0 ? size : 0).trimmed();
    if (address_.isEmpty()) throw std::runtime_error("dbus-daemon cannot be started");
}

PrivateBus::~PrivateBus() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
}

}  // namespace orbinex::test
