#include "support/workstation_process.h"

#include <array>
#include <csignal>
#include <cstddef>
#include <iterator>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orbinex::test {

namespace {

[[noreturn]] void becomeWorkstation(int input, int output, std::vector<std::string>& arguments) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    std::string program = ORBINEX_MIDI_WORKSTATION;
    std::vector<char*> words{program.data()};
    for (auto& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    ::execv(words[0], words.data());
    ::_exit(127);
}

}  // namespace

WorkstationProcess::WorkstationProcess(std::vector<std::string> arguments) {
    std::array<int, 2> input{};
    std::array<int, 2> output{};
    if (::pipe2(input.data(), O_CLOEXEC) != 0 || ::pipe2(output.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipes");
    pid_ = ::fork();
    if (pid_ == 0) becomeWorkstation(input[0], output[1], arguments);
    if (pid_ < 0) throw std::runtime_error("no process");
    ::close(input[0]);
    ::close(output[1]);
    input_ = input[1];
    output_ = output[0];
    ::fcntl(output_, F_SETFL, O_NONBLOCK);
}

WorkstationProcess::~WorkstationProcess() {
    // One that is killed would keep the server waiting for it.
    ::close(input_);
    ::close(output_);
    constexpr int pollMicroseconds = 1'000;
    for (int left = 5'000; left > 0; --left) {
        if (::waitpid(pid_, nullptr, WNOHANG) == pid_) return;
        ::usleep(pollMicroseconds);
    }
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
}

void WorkstationProcess::play(std::string_view lines) const {
    while (!lines.empty()) {
        const auto written = ::write(input_, lines.data(), lines.size());
        if (written < 0) throw std::runtime_error("the workstation does not listen");
        lines.remove_prefix(static_cast<std::size_t>(written));
    }
}

const std::vector<std::string>& WorkstationProcess::lines() {
    std::array<char, 65'536> piece{};
    while (true) {
        const auto size = ::read(output_, piece.data(), piece.size());
        if (size <= 0) return lines_;
        auto more = reader_.take({piece.data(), static_cast<std::size_t>(size)});
        lines_.insert(lines_.end(), std::move_iterator(more.begin()), std::move_iterator(more.end()));
    }
}

}  // namespace orbinex::test
