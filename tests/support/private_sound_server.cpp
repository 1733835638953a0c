#include "support/private_sound_server.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orbinex::test {

namespace {

[[noreturn]] void becomeServer(const std::string& folder, const std::string& socket) {
    // A test that crashes must not leave its server behind.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int null = ::open("/dev/null", O_RDWR);
    ::dup2(null, STDOUT_FILENO);
    ::dup2(null, STDERR_FILENO);
    ::setenv("HOME", folder.c_str(), 1);
    ::setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    ::unsetenv("DISPLAY");
    const std::string protocol =
        "module-native-protocol-unix auth-anonymous=1 auth-cookie-enabled=0 socket=" + socket;
    ::execlp("pulseaudio", "pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "-L",
             "module-null-sink sink_name=first channels=2", "-L",
             "module-null-sink sink_name=second channels=6", "-L", protocol.c_str(),
             static_cast<char*>(nullptr));
    ::_exit(127);
}

bool accepts(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int client = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isAccepted =
        ::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    ::close(client);
    return isAccepted;
}

}  // namespace

PrivateSoundServer::PrivateSoundServer() {
    std::string name = std::filesystem::temp_directory_path() / "sound-XXXXXX";
    if (!::mkdtemp(name.data())) throw std::runtime_error("no folder for a sound server");
    folder_ = name;
}

PrivateSoundServer::~PrivateSoundServer() {
    kill();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void PrivateSoundServer::start() {
    pid_ = ::fork();
    if (pid_ == 0) becomeServer(folder_, socketPath());
    constexpr int pollMicroseconds = 10'000;
    for (int left = 2000; left > 0; --left) {
        if (accepts(socketPath())) return;
        if (::waitpid(pid_, nullptr, WNOHANG) == pid_) break;
        ::usleep(pollMicroseconds);
    }
    throw std::runtime_error("pulseaudio cannot be started");
}

void PrivateSoundServer::kill() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

std::string PrivateSoundServer::pactl(const std::string& arguments) const {
    const std::string command =
        "env -u DISPLAY HOME=" + folder_ + " PULSE_SERVER=" + address() + " LC_ALL=C pactl " + arguments;
    FILE* pipe = ::popen(command.c_str(), "re");  // NOLINT(bugprone-command-processor)
    if (!pipe) throw std::runtime_error("no shell");
    std::string output;
    std::array<char, 4096> part{};
    while (const auto size = std::fread(part.data(), 1, part.size(), pipe)) output.append(part.data(), size);
    if (::pclose(pipe) != 0) throw std::runtime_error("pactl " + arguments + " failed");
    return output;
}

}  // namespace orbinex::test
