#include "support/private_jack_server.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orbinex::test {

namespace {

void beSilent() {
    const int null = ::open("/dev/null", O_RDWR);
    ::dup2(null, STDIN_FILENO);
    ::dup2(null, STDOUT_FILENO);
    ::dup2(null, STDERR_FILENO);
}

[[noreturn]] void becomeServer(const std::string& name) {
    // A test that crashes must not leave its server behind, nor the server its name.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    beSilent();
    // Each period waits for the clients (-S), for as long as a busy computer needs (-t, milliseconds):
    // without the scheduling of a realtime kernel they would be late now and then, and messages lost.
    ::execlp("jackd", "jackd", "-r", "-S", "-t", "5000", "-n", name.c_str(), "-d", "dummy", "-r", "48000",
             "-p", "256", static_cast<char*>(nullptr));
    ::_exit(127);
}

}  // namespace

PrivateJackServer::PrivateJackServer() {
    constexpr int names = 4;
    for (int i = 0; i < names && lock_ < 0; ++i) {
        name_ = "orbinex-test-" + std::to_string(::getuid()) + "-" + std::to_string(i);
        const auto file = std::filesystem::temp_directory_path() / (name_ + ".lock");
        lock_ = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (lock_ >= 0 && ::flock(lock_, LOCK_EX | LOCK_NB) != 0) ::close(std::exchange(lock_, -1));
    }
    if (lock_ < 0) throw std::runtime_error("no name is free for a JACK server");
    ::setenv("JACK_DEFAULT_SERVER", name_.c_str(), 1);
    ::setenv("JACK_NO_START_SERVER", "1", 1);
}

PrivateJackServer::~PrivateJackServer() {
    stop();
    ::close(lock_);
}

void PrivateJackServer::start() {
    pid_ = ::fork();
    if (pid_ == 0) becomeServer(name_);
    constexpr int pollMicroseconds = 10'000;
    for (int left = 2000; left > 0; --left) {
        if (isAccepting()) return;
        if (::waitpid(pid_, nullptr, WNOHANG) == pid_) break;
        ::usleep(pollMicroseconds);
    }
    throw std::runtime_error("jackd cannot be started");
}

bool PrivateJackServer::isAccepting() const {
    // Not by a client: when one comes and goes while another comes, a server that waits for its clients may
    // wait for good. It marks by a flag for all whether it is woken from other processes.
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = "/dev/shm/jack_" + name_ + "_" + std::to_string(::getuid()) + "_0";
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isAccepted =
        ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    ::close(socket);
    return isAccepted;
}

void PrivateJackServer::suspend() const {
    if (pid_ > 0) ::kill(pid_, SIGSTOP);
}

void PrivateJackServer::stop() {
    if (pid_ > 0 && !endsWith(SIGTERM)) kill();
    removeFiles();
}

void PrivateJackServer::kill() {
    if (pid_ > 0) endsWith(SIGKILL);
    removeFiles();
}

bool PrivateJackServer::endsWith(int signal) {
    ::kill(pid_, signal);
    constexpr int pollMicroseconds = 1'000;
    for (int left = 10'000; left > 0; --left) {
        if (::waitpid(pid_, nullptr, WNOHANG) == pid_) {
            pid_ = -1;
            return true;
        }
        ::usleep(pollMicroseconds);
    }
    return false;
}

void PrivateJackServer::removeFiles() const {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm", ignored)) {
        if (entry.path().filename().string().find(name_ + "_") != std::string::npos)
            std::filesystem::remove(entry.path(), ignored);
    }
}

}  // namespace orbinex::test
