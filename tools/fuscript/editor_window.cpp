// The modelled editor as a person sees it: a window of the editor's class, with its transport keys.
//   editor_window FOLDER FPS        its folder, as README.md tells, and the timeline's rate

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include <poll.h>

#include "editor_bridge/timecode.h"
#include "editor_folder.h"
#include "text_window/text_window.h"

namespace {

using namespace orbinex;

namespace Symbol {
constexpr std::uint32_t space = 0x20;
constexpr std::uint32_t left = 0xff51;
constexpr std::uint32_t right = 0xff53;
}  // namespace Symbol

constexpr int redrawMilliseconds = 40;

class EditorWindow {
  public:
    EditorWindow(const char* folder, double fps) : editor_(folder), fps_(fps) {}

    void run() {
        pollfd events{window_.descriptor(), POLLIN, 0};
        while (window_.isOpen()) {
            ::poll(&events, 1, redrawMilliseconds);
            window_.handle([this](std::uint32_t symbol) { press(symbol); });
            draw();
        }
    }

  private:
    void press(std::uint32_t symbol) {
        const auto frame = editor_.frame(fps_);
        switch (symbol) {
            case 'l': return play(frame, speed_ == 1 ? 2 : 1);
            case 'j': return play(frame, -1);
            case 'k': return play(frame, 0);
            case Symbol::space: return play(frame, speed_ == 0 ? 1 : 0);
            case Symbol::left: return play(std::max<std::int64_t>(frame - 1, 0), 0);
            case Symbol::right: return play(frame + 1, 0);
            default: return;
        }
    }

    void play(std::int64_t frame, double speed) {
        speed_ = speed;
        editor_.play(frame, speed);
    }

    void draw() {
        constexpr std::size_t shown = 13;
        std::array<char, 8> speed{};
        std::snprintf(speed.data(), speed.size(), "%+.0fx", speed_);
        window_.draw(0, framesToTimecode(editor_.frame(fps_), false, fps_) + "   " + speed.data());
        const auto calls = editor_.calls();
        const auto first = calls.size() > shown ? calls.size() - shown : 0;
        for (std::size_t i = 0; i < shown; ++i)
            window_.draw(static_cast<int>(i) + 2, first + i < calls.size() ? calls[first + i] : "");
        window_.flush();
    }

    EditorFolder editor_;
    double fps_;
    double speed_ = 0;
    TextWindow window_{
        {.title = "DaVinci Resolve", .name = "resolve", .x = 480, .y = 430, .background = 0x20242c}};
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: editor_window FOLDER FPS\n", stderr);
        return 2;
    }
    try {
        EditorWindow(argv[1], std::atof(argv[2])).run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "editor_window: %s\n", error.what());
        return 1;
    }
    return 0;
}
