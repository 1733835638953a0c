#include "computer_pipe.h"

#include <array>
#include <cerrno>
#include <utility>

#include <unistd.h>

#include "test_phone/transcript.h"

namespace orbinex::demo {

ComputerPipe::ComputerPipe(Heard heard, std::function<void()> gone)
    : heard_(std::move(heard)), gone_(std::move(gone)), watch_(STDIN_FILENO, [this] { read(); }) {}

void ComputerPipe::read() {
    std::array<char, 16'384> buffer{};
    const auto count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (count <= 0) return gone_();
    for (const auto& line : lines_.take({buffer.data(), static_cast<std::size_t>(count)})) {
        const auto space = line.find(' ');
        const std::string_view all = line;
        heard_(all.substr(0, space), space == std::string::npos ? std::string_view() : all.substr(space + 1));
    }
}

void ComputerPipe::tell(std::string_view word, std::string_view rest) {
    std::string line(word);
    if (!rest.empty()) line.append(" ").append(rest);
    line += '\n';
    for (std::string_view left = line; !left.empty();) {
        const auto count = ::write(STDOUT_FILENO, left.data(), left.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        left.remove_prefix(static_cast<std::size_t>(count));
    }
}

void ComputerPipe::tell(std::string_view word, ByteView value) {
    tell(word, test_phone::hex(value));
}

}  // namespace orbinex::demo
