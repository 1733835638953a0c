#include "child_program.h"

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orbinex {

namespace {

std::filesystem::path folderOf(pid_t pid) {
    return std::filesystem::path("/proc") / std::to_string(pid);
}

/// Calls `read` with the open file of this name of every thread.
template <class Read>
void forEachThread(pid_t pid, const char* file, Read read) {
    std::error_code gone;
    for (const auto& thread : std::filesystem::directory_iterator(folderOf(pid) / "task", gone)) {
        std::ifstream opened(thread.path() / file);
        read(opened);
    }
}

/// The number after a key at the beginning of a line, 0 without.
long numberAfter(std::istream& lines, std::string_view key) {
    std::string line;
    while (std::getline(lines, line)) {
        if (line.starts_with(key)) return std::stol(line.substr(key.size()));
    }
    return 0;
}

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    for (auto& string : strings) pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> changed(const ChildProgram::Environment& changes) {
    std::vector<std::string> variables;
    for (char** entry = environ; *entry; ++entry) {
        const std::string variable(*entry);
        if (!changes.contains(variable.substr(0, variable.find('=')))) variables.push_back(variable);
    }
    for (const auto& [name, value] : changes) variables.push_back(name + "=" + value);
    return variables;
}

}  // namespace

ChildProgram::ChildProgram(std::vector<std::string> command, const Environment& changes) {
    std::array<int, 2> input{};
    std::array<int, 2> output{};
    if (::pipe2(input.data(), O_CLOEXEC) != 0 || ::pipe2(output.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    // All that needs memory is done before the fork.
    auto variables = changed(changes);
    const auto argv = pointersTo(command);
    const auto envp = pointersTo(variables);
    pid_ = ::fork();
    if (pid_ < 0) throw std::runtime_error("no process for " + command[0]);
    if (pid_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int null = ::open("/dev/null", O_WRONLY);
        ::dup2(input[0], STDIN_FILENO);
        ::dup2(output[1], STDOUT_FILENO);
        ::dup2(null, STDERR_FILENO);
        ::execvpe(argv[0], argv.data(), envp.data());
        ::_exit(127);
    }
    ::close(input[0]);
    ::close(output[1]);
    input_ = input[1];
    output_ = output[0];
}

ChildProgram::~ChildProgram() {
    if (isRunning()) {
        ::kill(pid_, SIGTERM);
        ::waitpid(pid_, nullptr, 0);
    }
    ::close(input_);
    ::close(output_);
}

void ChildProgram::send(std::string_view line) const {
    const std::string text = std::string(line) + "\n";
    if (::write(input_, text.data(), text.size()) < 0) throw std::runtime_error("a program takes no input");
}

bool ChildProgram::hasPrinted(std::string_view text, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    for (;;) {
        if (const auto found = printed_.find(text); found != std::string::npos) {
            printed_.erase(0, found + text.size());
            return true;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd readable{output_, POLLIN, 0};
        if (left.count() <= 0 || ::poll(&readable, 1, static_cast<int>(left.count())) <= 0) return false;
        std::array<char, 4096> piece{};
        const auto size = ::read(output_, piece.data(), piece.size());
        if (size <= 0) return false;
        printed_.append(piece.data(), static_cast<std::size_t>(size));
    }
}

bool ChildProgram::isRunning() {
    hasEnded_ = hasEnded_ || ::waitpid(pid_, nullptr, WNOHANG) == pid_;
    return !hasEnded_;
}

std::chrono::nanoseconds ChildProgram::processorTime() const {
    return orbinex::processorTime(pid_);
}

long ChildProgram::wakeUps() const {
    long result = 0;
    forEachThread(pid_, "status",
                  [&](std::istream& file) { result += numberAfter(file, "voluntary_ctxt_switches:"); });
    return result;
}

long ChildProgram::proportionalMemory() const {
    std::ifstream file(folderOf(pid_) / "smaps_rollup");
    return numberAfter(file, "Pss:");
}

pid_t ChildProgram::firstChild() const {
    std::ifstream file(folderOf(pid_) / "task" / std::to_string(pid_) / "children");
    pid_t child = 0;
    return file >> child ? child : 0;
}

std::chrono::nanoseconds processorTime(pid_t pid) {
    std::chrono::nanoseconds result{0};
    forEachThread(pid, "schedstat", [&](std::istream& file) {
        long long running = 0;
        if (file >> running) result += std::chrono::nanoseconds(running);
    });
    return result;
}

}  // namespace orbinex
