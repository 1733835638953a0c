// A workstation's window, for whoever must see one in front: it shows the last lines of its standard input,
// and ends with it.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <poll.h>
#include <unistd.h>

#include "base/line_reader.h"
#include "text_window/text_window.h"

namespace {

using namespace orbinex;

constexpr std::size_t shown = 15;

void run() {
    // Recognised by its class.
    TextWindow window({.title = "Ardour", .name = "Ardour", .x = 480, .y = 430, .background = 0x2a2a30});
    LineReader reader;
    std::vector<std::string> lines;
    while (window.isOpen()) {
        constexpr int redrawMilliseconds = 100;
        std::array<pollfd, 2> events{{{STDIN_FILENO, POLLIN, 0}, {window.descriptor(), POLLIN, 0}}};
        ::poll(events.data(), events.size(), redrawMilliseconds);
        if (events[0].revents != 0) {
            std::array<char, 4096> piece{};
            const auto size = ::read(STDIN_FILENO, piece.data(), piece.size());
            if (size <= 0) return;
            for (auto& line : reader.take({piece.data(), static_cast<std::size_t>(size)}))
                lines.push_back(line);
            if (lines.size() > shown) lines.erase(lines.begin(), lines.end() - shown);
        }
        window.handle([](std::uint32_t) {});
        for (std::size_t i = 0; i < shown; ++i)
            window.draw(static_cast<int>(i), i < lines.size() ? lines[i] : "");
        window.flush();
    }
}

}  // namespace

int main() {
    try {
        run();
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "workstation_window: %s\n", fault.what());
        return 1;
    }
    return 0;
}
