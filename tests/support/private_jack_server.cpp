#include "support/private_jack_server.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace orbinex::test {

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
    // Each period waits for the clients (-S), for as long as a busy computer needs (-t, milliseconds):
    // without the scheduling of a realtime kernel they would be late now and then, and messages lost. When
    // the test dies it is asked to end, so that it gives its name back.
    process_ = ChildProcess(
        {"jackd", "-r", "-S", "-t", "5000", "-n", name_, "-d", "dummy", "-r", "48000", "-p", "256"},
        {.signalOfDeath = SIGTERM});
    // Not asked by a client: when one comes and goes while another comes, a server that waits for its clients
    // may wait for good. It marks by a flag for all whether it is woken from other processes.
    if (!process_.comesToAccept("/dev/shm/jack_" + name_ + "_" + std::to_string(::getuid()) + "_0"))
        throw std::runtime_error("jackd cannot be started");
}

void PrivateJackServer::stop() {
    process_.endsBy(SIGTERM, std::chrono::seconds(10));
    kill();
}

void PrivateJackServer::kill() {
    process_.kill();
    removeFiles();
}

void PrivateJackServer::removeFiles() const {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm", ignored)) {
        if (entry.path().filename().string().find(name_ + "_") != std::string::npos)
            std::filesystem::remove(entry.path(), ignored);
    }
}

}  // namespace orbinex::test
