// When the windows are loaded, shown and given back.

#include <QElapsedTimer>
#include <QPointer>
#include <QScreen>
#include <QTest>

#include <gtest/gtest.h>

#include "app/app_delegate.h"
#include "pictures/faced_program.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

TEST(Interface, loadsNothingUntilAWindowIsAskedFor) {
    FacedProgram program;
    auto& phone = program.addPhone("Ada");
    program.bringTo(LinkPhase::connected, phone);
    EXPECT_EQ(program.face.scene(), nullptr);
    program.face.togglePanel();
    EXPECT_TRUE(program.face.scene());
}

TEST(Interface, givesTheWindowsBackAWhileAfterTheLastWasClosed) {
    FacedProgram program;
    const QPointer<QQuickWindow> window = &program.window();
    const QPointer<QQuickWindow> panel = &program.panel();
    window->close();
    program.advance(Interface::unusedLifetime * 2);
    EXPECT_TRUE(program.face.scene()) << "the panel is open";
    program.face.togglePanel();
    program.advance(Interface::unusedLifetime - 1s);
    EXPECT_TRUE(window);
    program.advance(2s);
    EXPECT_EQ(program.face.scene(), nullptr);
    EXPECT_FALSE(window || panel);
    Hand again(program.window());
    EXPECT_EQ(again.text("phaseWord"), "Searching");
}

TEST(Interface, keepsTheWindowsOfWhoOpensOneAgainAtOnce) {
    FacedProgram program;
    const QPointer<QQuickWindow> window = &program.window();
    window->close();
    program.advance(Interface::unusedLifetime / 2);
    program.face.openMainWindow();
    program.advance(Interface::unusedLifetime * 2);
    ASSERT_TRUE(window);
    EXPECT_TRUE(window->isVisible());
}

TEST(Interface, opensTheWindowForAnAlertThatNothingElseCanShow) {
    FacedProgram program;
    const auto studio = program.trust("Studio");
    program.app.centralManager.connectTrustedDevice(studio);
    ASSERT_TRUE(program.face.hasVisibleWindows()) << "there is no notification service here";
    QQuickWindow& window = program.window();
    Hand hand(window);
    EXPECT_EQ(hand.text("messageTitle"), "Studio Isn't Nearby");
    ASSERT_TRUE(hand.click("messageButton0"));

    // A window that is minimised is not seen, and is as large as before when it is seen again.
    window.setWindowStates(Qt::WindowMaximized | Qt::WindowMinimized);
    hand.settle();
    EXPECT_FALSE(program.face.scene()->isMainWindowSeen());
    program.app.centralManager.connectTrustedDevice(studio);
    EXPECT_EQ(window.windowStates(), Qt::WindowMaximized);
    EXPECT_EQ(hand.text("messageTitle"), "Studio Isn't Nearby");
}

TEST(Interface, isNoLargerThanTheScreen) {
    FacedProgram program;
    for (int i = 0; i < 40; ++i) program.trust("iPhone " + std::to_string(i));
    const QRect available = program.window().screen()->availableGeometry();
    ASSERT_LT(available.width(), 860) << "the screen is too large to tell";
    EXPECT_LE(program.window().width(), available.width());
    Hand(program.panel()).settle();
    EXPECT_TRUE(available.contains(program.panel().geometry()));
}

TEST(Interface, closesTheWindowThatAQuestionHasOpenedOnceItIsAnswered) {
    FacedProgram program;
    const auto ask = [&] { program.pairing.ask("Ada", "123 456", [](bool) {}); };
    const auto isOpen = [&] { return program.face.scene() && program.face.scene()->isMainWindowVisible(); };
    ask();
    ask();
    Hand hand(program.window());
    // Whoever opens the window while the question waits, keeps it.
    ASSERT_TRUE(hand.click("messageButton0"));
    EXPECT_TRUE(isOpen());
    program.window().close();

    ask();
    ask();
    EXPECT_TRUE(isOpen());
    ASSERT_TRUE(Hand(*program.face.scene()->mainWindow()).click("messageButton1"));
    EXPECT_FALSE(isOpen());

    program.window();
    ask();
    program.pairing.withdraw();
    EXPECT_TRUE(isOpen()) << "it was open before";
}

TEST(Interface, showsNoWindowAtLoginAndOneOtherwise) {
    for (const bool isLogin : {true, false}) {
        FacedProgram program;
        AppDelegate delegate(program.preferences, program.relocation, [&] { program.face.openMainWindow(); });
        delegate.willFinishLaunching();
        delegate.didFinishLaunching(isLogin);
        EXPECT_EQ(program.face.hasVisibleWindows(), !isLogin);
        EXPECT_TRUE(program.face.trayIcon().isShown());
        delegate.handleSecondLaunch();
        EXPECT_TRUE(program.face.scene()->isMainWindowVisible());
    }
}

TEST(Interface, staysInTheTaskBarWhileNoTrayIconIsSeen) {
    const FacedProgram::Stored noIcon{{"showMenuBarIcon", false}};
    for (const auto& stored : {FacedProgram::Stored(), noIcon}) {
        FacedProgram program(stored);
        const auto state = [&] {
            program.queue.runDue();
            return program.face.scene() && program.face.scene()->isMainWindowVisible()
                       ? program.face.scene()->mainWindow()->visibility()
                       : QWindow::Hidden;
        };
        program.preferences.setTrayPresent(false);
        EXPECT_EQ(state(), QWindow::Minimized) << "from the start";
        program.window();
        EXPECT_EQ(state(), QWindow::Windowed);
        program.window().close();
        EXPECT_EQ(state(), QWindow::Minimized);
        program.advance(Interface::unusedLifetime * 2);
        EXPECT_EQ(state(), QWindow::Minimized);

        // What waits for an answer comes to the person, and goes when it has one.
        program.pairing.ask("Ada", std::nullopt, [](bool) {});
        EXPECT_EQ(state(), QWindow::Windowed);
        program.pairing.withdraw();
        EXPECT_EQ(state(), QWindow::Minimized);

        // The tray comes: nothing of the window is left, unless the person has it open.
        program.preferences.setTrayPresent(true);
        program.preferences.setShowMenuBarIcon(true);
        EXPECT_EQ(state(), QWindow::Hidden);
        program.window();
        program.preferences.setTrayPresent(false);
        program.preferences.setTrayPresent(true);
        EXPECT_EQ(state(), QWindow::Windowed);
        program.window().close();
        EXPECT_EQ(state(), QWindow::Hidden);
    }
}

TEST(Interface, tellsAtTheStartThatBluetoothIsOff) {
    const struct {
        BluetoothState first;
        BluetoothState then;
        bool isTold;
    } rows[] = {
        {BluetoothState::poweredOff, BluetoothState::poweredOff, true},
        {BluetoothState::poweredOff, BluetoothState::poweredOn, false},
        {BluetoothState::poweredOn, BluetoothState::poweredOff, false},
        {BluetoothState::unsupported, BluetoothState::unsupported, false},
    };
    for (const auto& row : rows) {
        FacedProgram program({}, true, row.first);
        // There is no notification service here, so that the window opens in its place.
        program.advance(1s);
        program.radio.setState(row.then);
        program.advance(Interface::launchTime);
        EXPECT_EQ(program.face.hasVisibleWindows(), row.isTold);
        if (!row.isTold) continue;
        program.window().close();
        program.radio.setState(BluetoothState::poweredOn);
        program.radio.setState(BluetoothState::poweredOff);
        program.advance(Interface::unusedLifetime);
        EXPECT_FALSE(program.face.hasVisibleWindows()) << "once";
    }
}

TEST(Interface, doesNotReopenThePanelByTheClickThatClosedIt) {
    FacedProgram program;
    program.panel();
    QWindow elsewhere;
    elsewhere.show();
    elsewhere.requestActivate();
    for (int turn = 0; turn < 100 && program.face.scene()->isPanelVisible(); ++turn)
        QCoreApplication::processEvents();
    ASSERT_FALSE(program.face.scene()->isPanelVisible()) << "it closes when it loses the focus";
    program.face.togglePanel();
    EXPECT_FALSE(program.face.scene()->isPanelVisible());
    program.advance(Interface::clickTime);
    program.face.togglePanel();
    EXPECT_TRUE(program.face.scene()->isPanelVisible());
}

TEST(Interface, repaintsNothingWhileNothingChanges) {
    FacedProgram program;
    auto& phone = program.addPhone("Ada");
    program.bringTo(LinkPhase::connected, phone);
    QQuickWindow& window = program.window();
    Hand hand(window);
    int frames = 0;
    QElapsedTimer still;
    still.start();
    const auto counting = QObject::connect(&window, &QQuickWindow::afterRendering, [&] {
        ++frames;
        still.restart();
    });
    // Colours and switches take a moment to become what they are to be.
    ASSERT_TRUE(QTest::qWaitFor([&] { return still.hasExpired(500); }, 20'000));
    frames = 0;
    // Every phone is heard again and again, and the list is pruned.
    program.advance(30s);
    for (int turn = 0; turn < 50; ++turn) QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    EXPECT_EQ(frames, 0);
    program.app.centralManager.disconnect();
    program.advance(1s);
    hand.settle();
    EXPECT_GT(frames, 0) << "the counter counts";
    QObject::disconnect(counting);
}

}  // namespace
}  // namespace orbinex::test
