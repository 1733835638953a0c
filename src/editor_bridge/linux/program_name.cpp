#include "editor_bridge/linux/program_name.h"

#include <array>
#include <charconv>
#include <cstddef>

#include <fcntl.h>
#include <unistd.h>

#include "editor_bridge/linux/descriptor.h"

namespace orbinex {

namespace {

/// "PID/NAME" without an allocation.
class ProcessPath {
  public:
    ProcessPath(pid_t pid, std::string_view name) {
        auto* end = std::to_chars(text_.data(), text_.data() + maxDigits, pid).ptr;
        *end++ = '/';
        end += name.copy(end, maxName);
        *end = '\0';
    }
    [[nodiscard]] const char* get() const { return text_.data(); }

  private:
    static constexpr std::size_t maxDigits = 12;
    static constexpr std::size_t maxName = 16;
    std::array<char, maxDigits + maxName + 2> text_{};
};

std::string_view afterLast(std::string_view text, std::string_view separators) {
    const auto last = text.find_last_of(separators);
    return last == std::string_view::npos ? text : text.substr(last + 1);
}

}  // namespace

std::string_view programOfLink(std::string_view link) {
    constexpr std::string_view deleted = " (deleted)";
    if (link.ends_with(deleted)) link.remove_suffix(deleted.size());
    return afterLast(link, "/");
}

std::string_view programOfArgument(std::string_view argument) {
    return afterLast(argument.substr(0, argument.find('\0')), "/\\");
}

std::string_view programName(int processes, pid_t pid, std::span<char> buffer) {
    const auto length = ::readlinkat(processes, ProcessPath(pid, "exe").get(), buffer.data(), buffer.size());
    if (length <= 0) return {};
    const auto program = programOfLink({buffer.data(), static_cast<std::size_t>(length)});
    // "wine", "wine64", "wine64-preloader": the loader of the program that is meant.
    if (!program.starts_with("wine")) return program;
    const Descriptor arguments(
        ::openat(processes, ProcessPath(pid, "cmdline").get(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!arguments) return {};
    const auto size = ::read(arguments.get(), buffer.data(), buffer.size());
    return size <= 0 ? std::string_view()
                     : programOfArgument({buffer.data(), static_cast<std::size_t>(size)});
}

}  // namespace orbinex
