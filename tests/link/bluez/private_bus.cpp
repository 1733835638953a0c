#include "private_bus.h"

#include <QFile>
#include <array>
#include <stdexcept>
#include <string>

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

}  // namespace

PrivateBus::PrivateBus() {
    QFile file(directory_.filePath("bus.conf"));
    std::array<int, 2> ends{};
    if (!file.open(QFile::WriteOnly) || ::pipe(ends.data()) != 0)
        throw std::runtime_error("no room for a bus");
    file.write(QString(configuration).arg(directory_.path()).toUtf8());
    file.close();
    process_ = ChildProcess({"dbus-daemon", "--nofork", "--nopidfile",
                             "--config-file=" + file.fileName().toStdString(),
                             "--print-address=" + std::to_string(ends[1])});
    ::close(ends[1]);
    std::array<char, 512> line{};
    const auto size = ::read(ends[0], line.data(), line.size());
    ::close(ends[0]);
    address_ = QString::fromUtf8(line.data(), size > 0 ? size : 0).trimmed();
    if (address_.isEmpty()) throw std::runtime_error("dbus-daemon cannot be started");
}

}  // namespace orbinex::test
