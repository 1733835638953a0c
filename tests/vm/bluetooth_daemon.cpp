#include "vm/bluetooth_daemon.h"

#include <algorithm>
#include <filesystem>
#include <vector>

namespace orbinex::test {

using namespace std::chrono_literals;

namespace {

constexpr Milliseconds startLimit = 40s;
constexpr Milliseconds endLimit = 10s;

/// Those that the kernel has.
std::vector<std::string> controllers() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/bluetooth")) {
        const std::string name = entry.path().filename();
        // Connections are there too, as "hci0:64".
        if (name.find(':') == std::string::npos) names.push_back(name);
    }
    return names;
}

}  // namespace

testing::AssertionResult BluetoothDaemon::start() {
    if (!isRunning())
        process_.emplace("bluetoothd", std::vector<std::string>{"bluetoothd", "-n"}, Process::Environment{},
                         logFile_);
    const auto wanted = controllers();
    const bool areAllUp = waitUntil(
        [&] {
            return !isRunning() || std::all_of(wanted.begin(), wanted.end(), [&](const std::string& name) {
                return bluetooth_.isPowered(name);
            });
        },
        startLimit);
    if (!isRunning()) return testing::AssertionFailure() << "bluetoothd does not stay up, see " << logFile_;
    if (!areAllUp) return testing::AssertionFailure() << "bluetoothd does not bring up all controllers";
    return testing::AssertionSuccess();
}

void BluetoothDaemon::kill() {
    process_.reset();
    waitUntil([this] { return !bluetooth_.isUp(); }, endLimit);
}

}  // namespace orbinex::test
