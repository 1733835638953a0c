// The program as a process: how it starts without what it needs, and how it ends.

#include <QCoreApplication>
#include <QFile>
#include <csignal>
#include <memory>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/app_coordinator.h"
#include "app/linux/fd_watch.h"
#include "app/linux/program_run.h"
#include "app/linux/qt_main_queue.h"
#include "app/linux/unix_signals.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "input/x11/x_client.h"
#include "sim/idle_editor_bridge.h"
#include "sim/memory_defaults.h"
#include "sim/simulated_radio.h"
#include "sim/simulated_shell.h"
#include "support/private_x_server.h"

namespace orbinex::test {
namespace {

TEST(Program, saysWhatIsMissingWithoutADisplay) {
    ProgramRun run("");
    EXPECT_TRUE(run.says("no X display"));
    EXPECT_EQ(run.end(), 1);
}

TEST(Program, saysWhatTheDisplayLacksAndShowsItToWhoeverSeesNoTerminal) {
    const PrivateXServer server(640, 480, "RANDR");
    ProgramRun inTerminal(server.display());
    EXPECT_TRUE(inTerminal.says("RANDR 1.5"));
    EXPECT_EQ(inTerminal.end(), 1);
    ProgramRun atLogin(server.display(), {.arguments = "--at-login", .startupToken = "launcher_TIME1"});
    EXPECT_EQ(atLogin.end(), 1);
    ProgramRun byLauncher(server.display(), {.startupToken = "launcher_TIME1"});
    EXPECT_TRUE(byLauncher.says("RANDR 1.5"));
    EXPECT_TRUE(byLauncher.reaches([&] { return showsWindow(server, "Orbinex Cannot Start"); }));
}

TEST(Program, endsWellWhenItIsAskedTo) {
    const PrivateXServer server;
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        ProgramRun run(server.display());
        EXPECT_TRUE(run.says("Starting Bluetooth…"));
        run.signal(number);
        EXPECT_EQ(run.end(), 0) << number;
    }
}

TEST(Program, takesCommandsWhereTheyComeFrom) {
    const PrivateXServer server;
    // From a person or another program, the last line without an end.
    ProgramRun run(server.display());
    EXPECT_TRUE(run.says("Starting Bluetooth…"));
    run.type("da");
    run.type("nce\nlist\nquit");
    run.closeInput();
    EXPECT_TRUE(run.says("There is no such command; try help.\nNo iPhone is trusted or nearby."));
    EXPECT_EQ(run.end(), 0);
}

TEST(Program, endsWhenTheDisplayGoes) {
    PrivateXServer server;
    ProgramRun run(server.display());
    EXPECT_TRUE(run.says("Starting Bluetooth…"));
    server.kill();
    EXPECT_EQ(run.end(), 1);
}

TEST(Program, isOneForAUserHoweverOftenItIsStarted) {
    const PrivateXServer server;
    const auto home = std::make_shared<QTemporaryDir>();
    const auto start = [&](const char* arguments = "") {
        return std::make_unique<ProgramRun>(server.display(),
                                            ProgramRun::Setting{.arguments = arguments, .home = home});
    };
    auto first = start("--at-login");
    EXPECT_TRUE(first->says("Starting Bluetooth…"));
    // The answer of the first one ends the second.
    EXPECT_EQ(start("--at-login")->end(), 0);
    // Twice: what was asked for before the first of them has reached the screen by the second.
    for (int i = 0; i < 2; ++i) {
        first->type("list\n");
        EXPECT_TRUE(first->says("No iPhone is trusted or nearby."));
    }
    EXPECT_FALSE(showsWindow(server)) << "nobody has asked to see it";
    EXPECT_EQ(start()->end(), 0);
    EXPECT_TRUE(first->reaches([&] { return showsWindow(server); }));
    ProgramRun other(server.display());
    EXPECT_TRUE(other.says("Starting Bluetooth…")) << "another user's is another";

    first->signal(SIGKILL);
    EXPECT_EQ(first->end(), -1);
    auto next = start();
    EXPECT_TRUE(next->says("Starting Bluetooth…"));
    next->signal(SIGTERM);
    EXPECT_EQ(next->end(), 0);
    EXPECT_FALSE(QFile::exists(home->path() + "/orbinex.socket"));
}

TEST(Program, saysWhyInputIsNotAllowedAndGoesOn) {
    const PrivateXServer server(640, 480, "XTEST");
    ProgramRun run(server.display());
    EXPECT_TRUE(run.says("XTEST"));
    run.type("status\nquit\n");
    EXPECT_TRUE(run.says("Starting Bluetooth…"));
    EXPECT_EQ(run.end(), 0);
}

/// The whole program with a phone that presses and holds; tells through the pipe once everything is down.
[[noreturn]] void holdUntilSignalled(const std::string& displayName, int tellPipe) {
    int argc = 1;
    char name[] = "holder";
    char* argv[] = {name, nullptr};
    int result = 1;
    {
        QCoreApplication application(argc, argv);
        QtMainQueue queue;
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) ::signal(number, SIG_DFL);
        const UnixSignals ending([](int) { QCoreApplication::exit(0); });
        const auto display = X11Connection::open(displayName);
        X11EventPoster poster(*display, queue);
        X11KeyboardLayoutSource layouts(*display, queue);
        const FdWatch events(display->fd(), [&] { display->processEvents(); });
        SimulatedRadio radio(queue);
        auto& phone = radio.addPhone(UUID::random(), {2, UUID::random(), "Studio iPhone"});
        WakeNotifier wake;
        IdleEditorBridge bridge;
        MemoryDefaults defaults;
        SimulatedShell shell;
        AppPreferences preferences(defaults);
        AppCoordinator app(preferences, {queue, defaults, radio, wake, poster, layouts, bridge,
                                         [] { return std::string(); }, shell.ports()});
        const auto found = app.centralManager.nearbyDevices.onDidChange([&](const NearbyList& list) {
            if (!list.empty() && !app.centralManager.session())
                queue.post([&] { app.centralManager.connectNearbyDevice(phone.identifier()); });
        });
        const auto connected = app.centralManager.phase.onDidChange([&](LinkPhase phase) {
            if (phase != LinkPhase::connected) return;
            phone.send(DecodedPacket{DecodedPacket::MouseButtonChange{MouseButton::left, KeyState::pressed}});
            phone.send(DecodedPacket{DecodedPacket::KeyStroke{0, ModifierFlags::shift, KeyState::pressed}});
            phone.send(DecodedPacket{DecodedPacket::Text{"ж", {}, std::nullopt}});
            queue.post([=] { [[maybe_unused]] const auto written = ::write(tellPipe, "x", 1); });
        });
        result = QCoreApplication::exec();
    }
    ::_exit(result);
}

TEST(Program, holdsNothingDownAfterASignal) {
    const PrivateXServer server;
    XClient client(server.display());
    const auto keyboardBefore = client.keyboardMap();
    for (const int number : {SIGTERM, SIGHUP, SIGINT}) {
        int tell[2];
        ASSERT_EQ(::pipe(tell), 0);
        const pid_t child = ::fork();
        if (child == 0) holdUntilSignalled(server.display(), tell[1]);
        ::close(tell[1]);
        char byte = 0;
        ASSERT_EQ(::read(tell[0], &byte, 1), 1) << "the holder ended early";
        ::close(tell[0]);
        EXPECT_NE(client.buttonsDown(), 0U);
        EXPECT_FALSE(client.keysDown().empty());

        ::kill(child, number);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << number;
        EXPECT_EQ(client.buttonsDown(), 0U);
        EXPECT_TRUE(client.keysDown().empty());
        EXPECT_EQ(client.keyboardMap(), keyboardBefore);
    }
}

}  // namespace
}  // namespace orbinex::test
