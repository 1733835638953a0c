#include "support/private_sound_server.h"

#include <array>
#include <cstdio>
#include <stdexcept>

namespace orbinex::test {

void PrivateSoundServer::start() {
    const std::string protocol =
        "module-native-protocol-unix auth-anonymous=1 auth-cookie-enabled=0 socket=" + socketPath();
    process_ = ChildProcess({"env", "-u", "DISPLAY", "pulseaudio", "-n", "--daemonize=no",
                             "--exit-idle-time=-1", "-L", "module-null-sink sink_name=first channels=2", "-L",
                             "module-null-sink sink_name=second channels=6", "-L", protocol},
                            {.environment = {{"HOME", folder_.path()}, {"XDG_RUNTIME_DIR", folder_.path()}}});
    if (!process_.comesToAccept(socketPath())) throw std::runtime_error("pulseaudio cannot be started");
}

std::string PrivateSoundServer::pactl(const std::string& arguments) const {
    const std::string command = "env -u DISPLAY HOME=" + folder_.path() + " PULSE_SERVER=" + address() +
                                " LC_ALL=C pactl " + arguments;
    FILE* pipe = ::popen(command.c_str(), "re");  // NOLINT(bugprone-command-processor)
    if (!pipe) throw std::runtime_error("no shell");
    std::string output;
    std::array<char, 4096> part{};
    while (const auto size = std::fread(part.data(), 1, part.size(), pipe)) output.append(part.data(), size);
    if (::pclose(pipe) != 0) throw std::runtime_error("pactl " + arguments + " failed");
    return output;
}

}  // namespace orbinex::test
