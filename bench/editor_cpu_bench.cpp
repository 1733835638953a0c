// The processor time of the program as a whole process while an editor plays a timeline of 32 tracks at 30
// frames a second, and while no editor runs; the scripting host's beside it.

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "editor_folder.h"
#include "support/private_x_server.h"

namespace orbinex {
namespace {

constexpr int tracks = 32;
constexpr int measuredSeconds = 10;
constexpr int startSeconds = 6;
constexpr std::int64_t beginning = 108'000;

/// A program that ends with this object.
class Process {
  public:
    Process(const std::string& path, std::initializer_list<const char*> arguments) {
        std::vector<char*> all{const_cast<char*>(path.c_str())};
        for (const char* argument : arguments) all.push_back(const_cast<char*>(argument));
        all.push_back(nullptr);
        pid_ = ::fork();
        if (pid_ != 0) return;
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int null = ::open("/dev/null", O_RDWR);
        for (int stream = 0; stream <= 2; ++stream) ::dup2(null, stream);
        ::execv(path.c_str(), all.data());
        ::_exit(127);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() {
        ::kill(pid_, SIGTERM);
        ::waitpid(pid_, nullptr, 0);
    }
    [[nodiscard]] pid_t pid() const { return pid_; }

  private:
    pid_t pid_;
};

/// In milliseconds, since the process began.
double processorTime(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(file)), {});
    long user = 0;
    long system = 0;
    const auto end = text.rfind(')');
    if (end == std::string::npos ||
        std::sscanf(text.c_str() + end, ") %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld", &user,
                    &system) != 2) {
        return -1;
    }
    return 1000.0 * static_cast<double>(user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

pid_t childOf(pid_t pid) {
    const auto number = std::to_string(pid);
    std::ifstream file("/proc/" + number + "/task/" + number + "/children");
    pid_t child = 0;
    return file >> child ? child : 0;
}

/// Of the whole computer's one core, in percent.
struct Share {
    double program;
    double host;
};

Share measure(pid_t program) {
    const pid_t host = childOf(program);
    const double programBefore = processorTime(program);
    const double hostBefore = host > 0 ? processorTime(host) : 0;
    ::sleep(measuredSeconds);
    const double scale = 100.0 / (1000.0 * measuredSeconds);
    return {(processorTime(program) - programBefore) * scale,
            host > 0 ? (processorTime(host) - hostBefore) * scale : 0};
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
    std::string name = std::filesystem::temp_directory_path() / "orbinex-bench-XXXXXX";
    if (!::mkdtemp(name.data())) return 1;
    const std::filesystem::path folder(name);
    const test::PrivateXServer server;
    EditorFolder editor(folder / "editor");
    ::setenv("DISPLAY", server.display().c_str(), 1);
    ::setenv("HOME", folder.c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
    ::setenv("ORBINEX_EDITOR_FOLDER", editor.path().c_str(), 1);
    const std::string host = programs / "fuscript";
    bool isRunning = false;
    {
        const Process orbinex(programs / "orbinex", {"--at-login", "--script-host", host.c_str()});
        ::sleep(2);
        const auto idle = measure(orbinex.pid());
        editor.open(session());
        editor.play(beginning, 1);
        // Recognised by the name of its process.
        const auto standIn = folder / "resolve";
        std::filesystem::copy_file("/bin/sleep", standIn);
        const Process resolve(standIn, {"1000"});
        ::sleep(startSeconds);
        isRunning = childOf(orbinex.pid()) > 0;
        const auto playing = measure(orbinex.pid());
        std::printf("no editor                            orbinex %.2f %% of a core\n", idle.program);
        std::printf("an editor plays, %d tracks, 30 fps   orbinex %.2f %%, the scripting host %.2f %%\n",
                    tracks, playing.program, playing.host);
    }
    std::filesystem::remove_all(folder);
    if (!isRunning) std::fputs("the script did not run\n", stderr);
    return isRunning ? 0 : 1;
}

}  // namespace
}  // namespace orbinex

int main(int, char** argv) {
    return orbinex::run(std::filesystem::absolute(argv[0]).parent_path());
}
