// Shows the main job from end to end: a simulated phone drives a desktop of the demo's own, and what it does
// is read back from the X server and from the editor.

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "app/linux/unix_signals.h"
#include "stage.h"

namespace {

using namespace orbinex;
using namespace orbinex::demo;
using namespace std::chrono_literals;

constexpr auto patience = 100s;
/// Between packets: what a phone's screen gives, and slow enough to be watched.
constexpr std::chrono::milliseconds touchPace{4};
constexpr std::chrono::milliseconds watchedPace{16};
constexpr auto farewell = 5s;
/// In which every window has shown what it was last told.
constexpr auto drawingTime = 300ms;

constexpr const char* usage = R"(usage: orbinex_demo [--nested] [--out FILE]
  --nested     in a window on your own display, slowly enough to watch; leave the pointer out of that window
  --out FILE   where the picture of the desktop goes; out/demo.png when not given
)";

struct Options {
    bool isNested = false;
    std::filesystem::path picture = "out/demo.png";
};

std::optional<Options> parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--nested") {
            options.isNested = true;
        } else if (argument == "--out" && i + 1 < argc) {
            options.picture = argv[++i];
        } else {
            return std::nullopt;
        }
    }
    return options;
}

void tellTheStory(EventLoop& loop, Report& report, const Options& options) {
    PrivateDesktop desktop(
        loop, options.isNested ? PrivateDesktop::Screen::nested : PrivateDesktop::Screen::unseen);
    ScreenProbe screen(desktop.display());
    SelectionProbe selections(desktop.display());
    openTheDesktop(loop, report, desktop, screen);

    report.chapter("The program starts");
    EditorFolder editor(desktop.place("editor"));
    const auto clips = makeClipFiles(
        desktop.place("media"),
        [&](const char* name, const QStringList& arguments) { return desktop.run(name, arguments); });
    // The scripting host, a child of this program, finds the editor by it.
    qputenv("ORBINEX_EDITOR_FOLDER", QByteArray::fromStdString(editor.path().string()));
    const auto host = QCoreApplication::applicationDirPath() + QStringLiteral("/fuscript");
    Program program(loop, report,
                    {.display = desktop.display(),
                     .scriptHost = host.toStdString(),
                     .commandFile = desktop.place("commands.txt"),
                     .soundServer = desktop.soundServer()});
    PhoneUser user(loop, program.phone(), options.isNested ? watchedPace : touchPace);
    Stage stage{loop, report, desktop, screen, selections, program, user, editor, clips};
    meetThePhone(stage);
    moveAndClick(stage);
    typeTheLetter(stage);
    selectAndCopy(stage);
    loseTheLinkInADrag(stage);
    scrollThroughTheLetter(stage);
    controlTheEditor(stage);
    loop.linger(drawingTime);
    const bool isTaken = desktop.takePicture(options.picture.string());
    report.step("picture of the desktop", "taken", isTaken ? "taken" : "not taken");
    restartTheEditor(stage);
    if (options.isNested) loop.linger(farewell);
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const auto options = parse(argc, argv);
    if (!options) {
        std::fputs(usage, stderr);
        return 2;
    }
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::absolute(options->picture).parent_path(), ignored);

    EventLoop loop(patience);
    const UnixSignals signals([&](int signal) { loop.end({"ended by a signal", 128 + signal}); });
    Report report;
    try {
        tellTheStory(loop, report, *options);
    } catch (const Ended& why) {
        std::fprintf(stderr, "demo: %s\n", why.reason.c_str());
        return why.exitStatus;
    }
    report.summary(std::filesystem::absolute(options->picture).string());
    return report.failures() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
