// Shows the main job from end to end: a simulated phone drives a desktop of the demo's own, and what it does
// is read back from the X server and from the editor.

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "app/linux/unix_signals.h"
#include "editor_bridge/midi/jack_connection.h"
#include "stage.h"

namespace {

using namespace orbinex;
using namespace orbinex::demo;
using namespace std::chrono_literals;

constexpr auto patience = 100s;
/// Between packets: what a phone's screen gives, and slow enough to be watched.
constexpr std::chrono::milliseconds touchPace{4};
constexpr std::chrono::milliseconds watchedPace{16};
constexpr auto windowLimit = 20s;
constexpr auto midiLookInterval = 500ms;

constexpr const char* usage = R"(usage: orbinex_demo [--nested] [--play] [--out FILE]
  --nested     in a window on your own display, slowly enough to watch, with the phone in a window beside it;
               leave the pointer out of that window. Afterwards it stays, for you to use the phone.
  --play       the same without the story
  --out FILE   where the picture of the desktop goes; out/demo.png when not given
)";

struct Options {
    bool isNested = false;
    bool isStoryTold = true;
    std::filesystem::path picture = "out/demo.png";
};

std::optional<Options> parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--nested") {
            options.isNested = true;
        } else if (argument == "--play") {
            options.isNested = true;
            options.isStoryTold = false;
        } else if (argument == "--out" && i + 1 < argc) {
            options.picture = argv[++i];
        } else {
            return std::nullopt;
        }
    }
    return options;
}

void tellTheStory(Stage& stage, const Options& options) {
    meetThePhone(stage);
    moveAndClick(stage);
    typeTheLetter(stage);
    selectAndCopy(stage);
    loseTheLinkInADrag(stage);
    scrollThroughTheLetter(stage);
    useThePhonesWindow(stage);
    controlTheEditor(stage);
    showEverything(stage, options.picture.string());
    restartTheEditor(stage);
    useAWorkstation(stage);
    stage.report.summary(std::filesystem::absolute(options.picture).string());
}

/// Nothing when the story has been told to its end. The desktop stays where somebody is to play with it.
std::optional<Ended> run(EventLoop& loop, Report& report, const PrivateDisplay& display,
                         const Options& options) {
    PrivateDesktop desktop(loop, display);
    ScreenProbe screen(desktop.display(), desktop.places().deskLeft);
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
    MidiStudio studio(desktop);
    Program program(loop, report,
                    {.display = desktop.display(),
                     .scriptHost = host.toStdString(),
                     .commandFile = desktop.place("commands.txt"),
                     .soundServer = desktop.soundServer(),
                     .midi = {.systems = {JackConnection::open}, .retryDelay = midiLookInterval}});
    // A person has one pointer. Were the phone on the desktop that it moves the pointer of, nobody could use
    // it.
    PhoneWindow phoneWindow(loop, program.phone(),
                            options.isNested ? PhoneWindow::Use::byPerson : PhoneWindow::Use::byOrders,
                            options.isNested ? display.outside() : desktop.environment(),
                            QString::fromStdString(desktop.place("phone.log")));
    const bool isPhoneShown = loop.waitUntil([&] { return phoneWindow.isShown(); }, windowLimit);
    report.step("the phone's window", "is shown", isPhoneShown ? "is shown" : "is not");
    PhoneUser user(loop, program.phone(), phoneWindow, options.isNested ? watchedPace : touchPace);
    Stage stage{loop, report, desktop, screen, selections, program, phoneWindow, user, editor, clips, studio};
    if (options.isStoryTold) tellTheStory(stage, options);
    if (!options.isNested) return std::nullopt;
    if (!options.isStoryTold) setTheStage(stage);
    letPlay(stage);
    return loop.run();
}

}  // namespace

int main(int argc, char** argv) {
    const auto options = parse(argc, argv);
    if (!options) {
        std::fputs(usage, stderr);
        return 2;
    }
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::absolute(options->picture).parent_path(), ignored);

    Report report;
    try {
        EventLoop loop(patience);
        // It goes with the process however that ends: Qt leaves by exit() when the display goes away.
        static const PrivateDisplay display(options->isNested ? PrivateDisplay::Screen::nested
                                                              : PrivateDisplay::Screen::unseen);
        display.moveIn();
        Interface::prepareApplication();
        const QApplication application(argc, argv);
        const UnixSignals signals([&](int signal) { loop.end({"ended by a signal", 128 + signal}); });
        if (const auto end = run(loop, report, display, *options)) {
            std::fprintf(stderr, "demo: %s\n", end->reason.c_str());
            if (end->exitStatus > 1) return end->exitStatus;
        }
    } catch (const Ended& why) {
        std::fprintf(stderr, "demo: %s\n", why.reason.c_str());
        return why.exitStatus;
    }
    return report.failures() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
