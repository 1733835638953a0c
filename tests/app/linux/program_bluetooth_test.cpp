// The program as a process, its Bluetooth a bluetoothd that this test plays on a bus of its own.

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QEventLoop>
#include <csignal>

#include <gtest/gtest.h>

#include "app/linux/program_run.h"
#include "app/linux/qt_main_queue.h"
#include "link/bluez/bluez_world.h"
#include "link/bluez/fake_bluez.h"
#include "link/bluez/private_bus.h"
#include "protocol/device_info.h"
#include "support/private_x_server.h"

namespace orbinex::test {
namespace {

/// What a program runs on, with a phone that is not heard yet.
struct Computer {
    Computer() : phone(bluez.addPhone("5A:00:00:00:00:01", "OXA1B2C3:Studio iPhone")) {
        const auto info =
            DeviceInfo{2, UUID::literal("A1B2C3D4-0000-4000-8000-000000000001"), "Studio iPhone"}.encode();
        phone.info =
            QByteArray(reinterpret_cast<const char*>(info.data()), static_cast<qsizetype>(info.size()));
        bluez.rise();
        bluez.addAdapter(FakeBluez::hci0, true);
    }

    [[nodiscard]] bool isSearchedBy(ProgramRun& run) {
        return run.reaches([this] { return bluez.isDiscovering(); });
    }
    /// The person finds the phone and connects it; the program asks.
    [[nodiscard]] testing::AssertionResult isAskedAboutPairing(ProgramRun& run) {
        if (!isSearchedBy(run)) return testing::AssertionFailure() << "no search: " << run.output();
        const auto isListed = [&] {
            bluez.advertise(phone);
            run.type("list\n");
            return run.output().find("1. Studio iPhone") != std::string::npos;
        };
        if (!run.reaches(isListed)) return testing::AssertionFailure() << "not listed: " << run.output();
        run.type("connect Studio iPhone\n");
        if (!run.says("Pair with \"Studio iPhone\"? It shows "))
            return testing::AssertionFailure() << run.output();
        return testing::AssertionSuccess();
    }
    /// What reached the bus before this has reached the fake after it.
    void settle() {
        const QDBusPendingCallWatcher answer(
            QDBusConnection::connectToBus(bus, "settle")
                .asyncCall(QDBusMessage::createMethodCall(bluez.connection().baseService(), "/nothing",
                                                          "org.freedesktop.DBus.Peer", "Ping")));
        while (!answer.isFinished()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents();
    }
    /// Of a program that has ended, nothing is left.
    void expectNothingLeft() {
        settle();
        EXPECT_FALSE(bluez.isDiscovering());
        EXPECT_FALSE(bluez.isConnected(phone));
        EXPECT_FALSE(bluez.isAgentRegistered());
    }

    QString bus = busAddress();
    PrivateXServer screen;
    QtMainQueue queue;
    FakeBluez bluez{bus, queue};
    FakePhone& phone;
};

TEST(ProgramOnBluetooth, pairsConnectsAndEndsTheConnectionWithItself) {
    for (const bool isSignalled : {false, true}) {
        Computer computer;
        ProgramRun run(computer.screen.display(), {.bus = computer.bus});
        ASSERT_TRUE(computer.isAskedAboutPairing(run));
        run.type("yes\n");
        ASSERT_TRUE(run.says("Connected to Studio iPhone")) << run.output();
        if (isSignalled) {
            run.signal(SIGTERM);
        } else {
            run.type("quit\n");
        }
        EXPECT_EQ(run.end(), 0);
        computer.expectNothingLeft();
    }
}

TEST(ProgramOnBluetooth, leavesNoQuestionAndNoAgentBehind) {
    Computer computer;
    ProgramRun run(computer.screen.display(), {.bus = computer.bus});
    ASSERT_TRUE(computer.isAskedAboutPairing(run));
    run.signal(SIGINT);
    EXPECT_EQ(run.end(), 0);
    computer.expectNothingLeft();
}

TEST(ProgramOnBluetooth, asksAboutAPairingInTheWindowWhereNobodyCanType) {
    Computer computer;
    ProgramRun run(computer.screen.display(), {.bus = computer.bus, .arguments = "--at-login"});
    ASSERT_TRUE(computer.isSearchedBy(run));
    EXPECT_FALSE(showsWindow(computer.screen));
    ASSERT_TRUE(computer.isAskedAboutPairing(run));
    EXPECT_TRUE(run.reaches([&] { return showsWindow(computer.screen); })) << run.output();
    run.closeInput();
    // A second start that is answered tells that the end of the input has been read.
    EXPECT_EQ(ProgramRun(computer.screen.display(), {.home = run.home()}).end(), 0);
    EXPECT_TRUE(showsWindow(computer.screen));
    run.signal(SIGTERM);
    EXPECT_EQ(run.end(), 0);
    EXPECT_EQ(run.output().find("Pairing Not Completed"), std::string::npos) << "it waited for an answer";
    EXPECT_FALSE(computer.phone.isBonded);
}

TEST(ProgramOnBluetooth, searchesWhateverItsStandardStreamsAre) {
    for (const char* const streams : {"</dev/null", "<&-", "<&- >&- 2>&-"}) {
        Computer computer;
        ProgramRun run(computer.screen.display(), {.bus = computer.bus, .arguments = streams});
        EXPECT_TRUE(computer.isSearchedBy(run)) << streams;
        run.signal(SIGTERM);
        EXPECT_EQ(run.end(), 0) << streams;
        computer.expectNothingLeft();
    }
}

}  // namespace
}  // namespace orbinex::test
