// The processor time of the program as a whole process while an editor plays a timeline of 32 tracks at 30
// frames a second, and while no editor runs; the scripting host's beside it.

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <thread>

#include "child_program.h"
#include "editor_folder.h"
#include "support/private_x_server.h"
#include "support/temporary_folder.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;

constexpr int tracks = 32;
constexpr std::chrono::duration<double> measured = 10s;
constexpr auto startTime = 6s;
constexpr std::int64_t beginning = 108'000;

/// Of the whole computer's one core, in percent.
struct Share {
    double program;
    double host;
};

Share measure(const ChildProgram& program) {
    const pid_t host = program.firstChild();
    const auto programBefore = program.processorTime();
    const auto hostBefore = host > 0 ? processorTime(host) : 0ns;
    std::this_thread::sleep_for(measured);
    const auto share = [](std::chrono::nanoseconds used) {
        return 100 * std::chrono::duration<double>(used).count() / measured.count();
    };
    return {share(program.processorTime() - programBefore),
            host > 0 ? share(processorTime(host) - hostBefore) : 0};
}

EditorSession session() {
    EditorSession session;
    session.rate = "30";
    for (int i = 1; i <= tracks; ++i) {
        const auto number = std::to_string(i);
        EditorTrack track{.name = "Track " + number};
        // A cut every four seconds.
        for (int clip = 0; clip < 60; ++clip) {
            track.clips.push_back({.name = "Clip " + number,
                                   .start = beginning + clip * 120,
                                   .finish = beginning + clip * 120 + 118,
                                   .path = "/media/clip.wav"});
        }
        session.tracks.push_back(std::move(track));
    }
    return session;
}

int run(const std::filesystem::path& programs) {
    const test::TemporaryFolder folder;
    const test::PrivateXServer server;
    EditorFolder editor(folder / "editor");
    const ChildProgram::Environment environment{{"DISPLAY", server.display()},
                                                {"HOME", folder.path()},
                                                {"XDG_CONFIG_HOME", folder.path()},
                                                {"XDG_RUNTIME_DIR", folder.path()},
                                                {"ORBINEX_EDITOR_FOLDER", editor.path()}};
    const ChildProgram orbinex({programs / "orbinex", "--at-login", "--script-host", programs / "fuscript"},
                               environment);
    std::this_thread::sleep_for(2s);
    const auto idle = measure(orbinex);
    editor.open(session());
    editor.play(beginning, 1);
    // Recognised by the name of its process.
    const auto standIn = folder / "resolve";
    std::filesystem::copy_file("/bin/sleep", standIn);
    const ChildProgram resolve({standIn, "1000"});
    std::this_thread::sleep_for(startTime);
    const bool isRunning = orbinex.firstChild() > 0;
    const auto playing = measure(orbinex);
    std::printf("no editor                            orbinex %.2f %% of a core\n", idle.program);
    std::printf("an editor plays, %d tracks, 30 fps   orbinex %.2f %%, the scripting host %.2f %%\n", tracks,
                playing.program, playing.host);
    if (!isRunning) std::fputs("the script did not run\n", stderr);
    return isRunning ? 0 : 1;
}

}  // namespace
}  // namespace orbinex

int main(int, char** argv) {
    return orbinex::run(std::filesystem::absolute(argv[0]).parent_path());
}
