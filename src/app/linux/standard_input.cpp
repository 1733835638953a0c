#include "app/linux/standard_input.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <utility>

#include <unistd.h>

namespace orbinex {

StandardInput::StandardInput(MainQueue& queue, std::function<void(const std::string&)> onLine)
    : queue_(queue),
      onLine_(std::move(onLine)),
      watch_(std::make_unique<FdWatch>(STDIN_FILENO, [this] { read(); })) {}

void StandardInput::read() {
    std::array<char, 4096> bytes{};
    const auto count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count > 0) {
        for (const auto& line : lines_.take({bytes.data(), static_cast<std::size_t>(count)})) onLine_(line);
        return;
    }
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    // Not destroyed here: it is what is calling. Until then it may call again.
    if (std::exchange(hasEnded_, true)) return;
    queue_.post(lifetime_.guard([this] { watch_.reset(); }));
    if (!lines_.unfinished().empty()) onLine_(lines_.unfinished());
}

}  // namespace orbinex
