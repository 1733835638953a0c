#include "vm/process.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orbinex::test {

namespace {

using Clock = std::chrono::steady_clock;

/// How often a condition is asked that no program's output announces.
constexpr Milliseconds lookInterval{20};

std::vector<Process*>& running() {
    static std::vector<Process*> processes;
    return processes;
}

void converse(const std::string& name, const char* direction, std::string_view line) {
    static const auto start = Clock::now();
    const std::chrono::duration<double> time = Clock::now() - start;
    std::printf("%8.2f  %-10s %s %.*s\n", time.count(), name.c_str(), direction,
                static_cast<int>(line.size()), line.data());
    std::fflush(stdout);
}

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        readEnd = ends[0];
        writeEnd = ends[1];
    }
    int readEnd = -1;
    int writeEnd = -1;
};

void closeFd(int& fd) {
    if (fd >= 0) ::close(std::exchange(fd, -1));
}

/// Pointers as the exec functions want them; they live as long as the strings.
std::vector<char*> pointersTo(std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    pointers.reserve(strings.size() + 1);
    for (std::string& string : strings) pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// Our own environment with these changes.
std::vector<std::string> merged(const Process::Environment& changes) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry; ++entry) {
        const std::string variable(*entry);
        if (!changes.contains(variable.substr(0, variable.find('=')))) result.push_back(variable);
    }
    for (const auto& [key, value] : changes) result.emplace_back(key).append("=").append(value);
    return result;
}

}  // namespace

Process::Process(std::string name, const std::vector<std::string>& command, const Environment& environment,
                 const std::string& logFile)
    : name_(std::move(name)) {
    const Pipe input;
    Pipe output;
    Pipe errors;
    if (!logFile.empty()) {
        const int log = ::open(logFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
        if (log < 0) throw std::runtime_error("cannot write " + logFile);
        for (Pipe* pipe : {&output, &errors}) {
            closeFd(pipe->readEnd);
            ::dup3(log, pipe->writeEnd, O_CLOEXEC);
        }
        ::close(log);
    }
    // All that needs memory is done before the fork.
    std::vector<std::string> words = command;
    std::vector<std::string> variables = merged(environment);
    const auto argv = pointersTo(words);
    const auto envp = pointersTo(variables);
    const pid_t scenario = ::getpid();
    pid_ = ::fork();
    if (pid_ < 0) throw std::runtime_error("no process for " + name_);
    if (pid_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != scenario) ::_exit(127);
        ::dup2(input.readEnd, STDIN_FILENO);
        ::dup2(output.writeEnd, STDOUT_FILENO);
        ::dup2(errors.writeEnd, STDERR_FILENO);
        ::execvpe(argv[0], argv.data(), envp.data());
        ::dprintf(STDERR_FILENO, "%s: %s\n", argv[0], std::strerror(errno));
        ::_exit(127);
    }
    ::close(input.readEnd);
    ::close(output.writeEnd);
    ::close(errors.writeEnd);
    input_ = input.writeEnd;
    output_.fd = output.readEnd;
    errors_.fd = errors.readEnd;
    for (const Stream* stream : {&output_, &errors_}) {
        if (stream->fd >= 0) ::fcntl(stream->fd, F_SETFL, O_NONBLOCK);
    }
    // glibc 2.36 declares its own function for this in a way that C++ cannot link.
    endFd_ = static_cast<int>(::syscall(SYS_pidfd_open, pid_, 0));
    if (endFd_ < 0) throw std::runtime_error("a kernel without process descriptors");
    // A program that is gone makes send() fail, not the scenario end.
    ::signal(SIGPIPE, SIG_IGN);
    running().push_back(this);
}

Process::~Process() {
    kill();
    std::erase(running(), this);
    for (int* fd : {&input_, &output_.fd, &errors_.fd, &endFd_}) closeFd(*fd);
}

bool Process::send(std::string_view line) {
    if (input_ < 0) return false;
    converse(name_, "<", line);
    const std::string text = std::string(line) + "\n";
    return ::write(input_, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

void Process::closeInput() {
    closeFd(input_);
}

template <class Matches>
testing::AssertionResult Process::waitForLine(const std::string& wanted, Milliseconds limit,
                                              Matches matches) {
    const std::size_t first = nextLine_;
    found_.clear();
    bool isFound = false;
    waitUntil(
        [&] {
            while (!isFound && nextLine_ < lines_.size()) {
                const std::string& line = lines_[nextLine_++];
                isFound = matches(line);
                if (isFound) found_ = line;
            }
            return isFound || !isRunning();
        },
        limit);
    if (isFound) return testing::AssertionSuccess();
    auto failure = testing::AssertionFailure();
    failure << name_ << (isRunning() ? " did not print \"" : " ended without printing \"") << wanted
            << "\" within " << std::chrono::duration<double>(limit).count() << " s, but";
    if (first == lines_.size()) failure << " nothing";
    for (std::size_t i = first; i < lines_.size(); ++i) failure << "\n    " << lines_[i];
    return failure;
}

testing::AssertionResult Process::waitFor(std::string_view text, Milliseconds limit) {
    return waitForLine(std::string(text), limit,
                       [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

testing::AssertionResult Process::waitFor(const std::regex& pattern, Milliseconds limit) {
    return waitForLine("a match", limit,
                       [&](const std::string& line) { return std::regex_search(line, pattern); });
}

void Process::skipToNow() {
    pump(Milliseconds::zero());
    nextLine_ = lines_.size();
}

void Process::terminate() const {
    if (isRunning()) ::kill(pid_, SIGTERM);
}

void Process::kill() {
    if (isRunning()) ::kill(pid_, SIGKILL);
    constexpr Milliseconds enough{10'000};
    waitForEnd(enough);
}

std::optional<int> Process::waitForEnd(Milliseconds limit) {
    waitUntil([this] { return !isRunning(); }, limit);
    return status_;
}

Milliseconds Process::processorTime() const {
    std::ifstream file("/proc/" + std::to_string(pid_) + "/stat");
    std::string text;
    if (!isRunning() || !std::getline(file, text)) return Milliseconds::zero();
    // The program's name, in parentheses, may hold anything. User and system time are the 12th and 13th
    // fields after it, in ticks.
    std::istringstream fields(text.substr(text.rfind(')') + 1));
    std::string field;
    for (int i = 0; i < 11; ++i) fields >> field;
    long user = 0;
    long system = 0;
    fields >> user >> system;
    return Milliseconds((user + system) * 1000 / ::sysconf(_SC_CLK_TCK));
}

int Process::openDescriptors() const {
    if (!isRunning()) return 0;
    std::error_code gone;
    const std::filesystem::directory_iterator folder("/proc/" + std::to_string(pid_) + "/fd", gone);
    return static_cast<int>(std::distance(begin(folder), end(folder)));
}

void Process::pump(Milliseconds limit) {
    std::vector<pollfd> waiting;
    for (const Process* process : running()) {
        // A negative descriptor is passed over.
        for (const int fd : {process->output_.fd, process->errors_.fd, process->endFd_})
            waiting.push_back({fd, POLLIN, 0});
    }
    if (::poll(waiting.data(), waiting.size(), static_cast<int>(limit.count())) <= 0) return;
    auto next = waiting.begin();
    for (Process* process : running()) {
        if ((next++)->revents != 0) process->readStream(process->output_);
        if ((next++)->revents != 0) process->readStream(process->errors_);
        if ((next++)->revents != 0) process->noteEnd();
    }
}

void Process::readStream(Stream& stream) {
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t size = ::read(stream.fd, buffer.data(), buffer.size());
        if (size > 0) {
            stream.unfinished.append(buffer.data(), static_cast<std::size_t>(size));
            takeLines(stream);
            continue;
        }
        if (size == 0) {
            closeFd(stream.fd);
            if (!stream.unfinished.empty()) stream.unfinished += '\n';
            takeLines(stream);
        }
        return;
    }
}

void Process::takeLines(Stream& stream) {
    std::size_t start = 0;
    for (std::size_t end = 0; (end = stream.unfinished.find('\n', start)) != std::string::npos;
         start = end + 1) {
        const std::string line = stream.unfinished.substr(start, end - start);
        const bool isOutput = &stream == &output_;
        converse(name_, isOutput ? "|" : "!", line);
        if (isOutput) lines_.push_back(line);
    }
    stream.unfinished.erase(0, start);
}

void Process::noteEnd() {
    int status = 0;
    if (::waitpid(pid_, &status, WNOHANG) != pid_) return;
    closeFd(endFd_);
    // What it printed at the very end.
    for (Stream* stream : {&output_, &errors_}) {
        if (stream->fd >= 0) readStream(*stream);
    }
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool waitUntil(const std::function<bool()>& condition, Milliseconds limit) {
    const auto deadline = Clock::now() + limit;
    for (;;) {
        Process::pump(Milliseconds::zero());
        if (condition()) return true;
        const auto left = std::chrono::duration_cast<Milliseconds>(deadline - Clock::now());
        if (left <= Milliseconds::zero()) return false;
        Process::pump(std::min(left, lookInterval));
    }
}

}  // namespace orbinex::test
