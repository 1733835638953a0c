// The tray icon on an X server of the test's own: in a tray that takes windows, and, where a session bus is
// given, in one that speaks to icons over it. The two exclude each other in one process.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QProcess>
#include <QScopeGuard>
#include <QThread>
#include <functional>

#include <gtest/gtest.h>

#include "pictures/faced_program.h"
#include "support/private_x_server.h"
#include "ui/notifier_watcher.h"
#include "ui/root_listener.h"
#include "ui/x_pointer.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

bool reaches(const std::function<bool()>& condition) {
    const QDeadlineTimer deadline(20s);
    while (!condition() && !deadline.hasExpired()) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return condition();
}

/// A desktop with a window manager. The application of this process lives on it.
class Desktop {
  public:
    Desktop() {
        qputenv("DISPLAY", QByteArray::fromStdString(server.display()));
        qputenv("QT_QPA_PLATFORM", "xcb");
        start(manager, "openbox");
    }
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;
    ~Desktop() {
        for (QProcess* process : {&manager, &tray}) {
            process->kill();
            process->waitForFinished();
        }
    }
    static void start(QProcess& process, const QString& program, const QStringList& arguments = {}) {
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, arguments);
        process.waitForStarted();
    }
    bool click(const QPoint& where) { return clickOnScreen(server.display(), where.x(), where.y()); }
    /// Whether the main window is out of the task bar, as the window manager has it.
    bool isOutOfTheTaskBar() {
        return server.run("xprop -name Orbinex _NET_WM_STATE 2>/dev/null | grep -q SKIP_TASKBAR");
    }

    PrivateXServer server;
    QProcess manager;
    QProcess tray;
};

Desktop& desktop() {
    static Desktop* const made = new Desktop;
    return *made;
}

/// The desktop's servers must not outlive the tests.
class EndOfDesktop final : public testing::Environment {
  public:
    void TearDown() override { delete &desktop(); }
};
const auto* const endOfDesktop = testing::AddGlobalTestEnvironment(new EndOfDesktop);

TEST(XEmbedTray, opensThePanelAtTheIconAndTheWindowFromThere) {
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    static_cast<void>(desktop());
    FacedProgram program;
    EXPECT_FALSE(program.face.trayIcon().isShown());
    // The tray starts after the program.
    Desktop::start(desktop().tray, "trayer",
                   {"--edge", "bottom", "--align", "right", "--widthtype", "request", "--height", "26"});
    ASSERT_TRUE(reaches([&] { return program.face.trayIcon().geometry().y() > 800; }))
        << "the icon is not in the tray";
    // The tray grows with its icon, and so the icon moves once more: a click may miss it.
    QDeadlineTimer nextClick;
    ASSERT_TRUE(reaches([&] {
        if (program.face.scene() && program.face.scene()->isPanelVisible())
            return program.face.scene()->panel()->isExposed();
        if (nextClick.hasExpired()) {
            program.advance(Interface::clickTime);
            static_cast<void>(desktop().click(program.face.trayIcon().geometry().center()));
            nextClick.setRemainingTime(1s);
        }
        return false;
    }));
    QQuickWindow& panel = *program.face.scene()->panel();
    const QRect icon = program.face.trayIcon().geometry();
    EXPECT_LE(panel.geometry().bottom(), icon.top());
    EXPECT_GE(panel.geometry().bottom(), icon.top() - 40);
    EXPECT_LE(panel.geometry().right(), 1280);

    Hand hand(panel);
    ASSERT_TRUE(desktop().click(panel.mapToGlobal(hand.place("openOrbinex"))));
    ASSERT_TRUE(reaches([&] { return program.face.scene()->isMainWindowVisible(); }));
    EXPECT_FALSE(program.face.scene()->isPanelVisible());
    QQuickWindow& window = *program.face.scene()->mainWindow();
    EXPECT_TRUE(reaches([&] { return window.isActive(); }));

    EXPECT_FALSE(desktop().isOutOfTheTaskBar());
    program.preferences.setShowInDock(false);
    program.queue.runDue();
    EXPECT_TRUE(reaches([&] { return desktop().isOutOfTheTaskBar(); }));
    window.close();
    program.face.openMainWindow();
    EXPECT_TRUE(reaches([&] { return desktop().isOutOfTheTaskBar(); })) << "opened anew";
    program.preferences.setShowInDock(true);
    EXPECT_TRUE(reaches([&] { return !desktop().isOutOfTheTaskBar(); }));
    program.preferences.setShowMenuBarIcon(false);
    EXPECT_TRUE(reaches([&] { return program.face.trayIcon().geometry().isEmpty(); }));
}

TEST(SecondLaunch, bringsTheWindowToTheFrontByTheLaunchersToken) {
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    RootListener root(desktop().server.display());
    FacedProgram program;
    const std::string token = "a \"launcher\\of the desktop\" with a long name-4711_TIME4294967295";
    for (const bool isOpen : {false, true}) {
        program.presence.setStartupToken(token);
        program.face.openMainWindow();
        const auto window = static_cast<std::uint64_t>(program.face.scene()->mainWindow()->winId());
        std::string told;
        std::vector<std::vector<long>> activations;
        ASSERT_TRUE(reaches([&] {
            for (const auto& message : root.take()) {
                if (message.type.starts_with("_NET_STARTUP_INFO")) told += message.bytes;
                if (message.type == "_NET_ACTIVE_WINDOW" && message.window == window)
                    activations.push_back(message.values);
            }
            return told.find('\0') != std::string::npos;
        })) << isOpen;
        EXPECT_EQ(told.c_str(),
                  "remove: ID=\"a \\\"launcher\\\\of the desktop\\\" with a long "
                  "name-4711_TIME4294967295\""s);
        ASSERT_EQ(activations.size(), 1U) << isOpen;
        EXPECT_EQ(activations[0][0], 1) << "an application asks";
        EXPECT_EQ(static_cast<std::uint32_t>(activations[0][1]), 4294967295U);
        EXPECT_TRUE(reaches([&] { return program.face.scene()->mainWindow()->isActive(); })) << isOpen;
    }
    // The token was for that launch.
    program.face.openMainWindow();
    reaches([] { return true; });
    for (const auto& message : root.take()) {
        EXPECT_FALSE(message.type.starts_with("_NET_STARTUP_INFO"));
        if (message.type == "_NET_ACTIVE_WINDOW") {
            EXPECT_NE(static_cast<std::uint32_t>(message.values[1]), 4294967295U);
        }
    }
}

TEST(NotifierTray, registersTheIconAndOpensThePanelWhenItIsActivated) {
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!address.startsWith("unix:") || address.contains("nonexistent")) GTEST_SKIP() << "no session bus";
    static_cast<void>(desktop());
    ASSERT_EQ(QCoreApplication::instance(), nullptr) << "to be run alone in its process";
    application();

    NotifierWatcher watcher;
    QThread thread;
    // What the checks below leave early ends here.
    const auto end = qScopeGuard([&thread] {
        thread.quit();
        thread.wait();
    });
    auto bus = QDBusConnection::connectToBus(address, "tray");
    ASSERT_TRUE(bus.registerObject("/StatusNotifierWatcher", &watcher,
                                   QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties));
    watcher.moveToThread(&thread);
    thread.start();
    // The first program runs before there is a tray, the second starts after it.
    for (const bool isLate : {true, false}) {
        watcher.forget();
        FacedProgram program;
        if (isLate) {
            QCoreApplication::processEvents();
            ASSERT_FALSE(program.face.trayIcon().isShown());
            ASSERT_TRUE(bus.registerService("org.kde.StatusNotifierWatcher"));
        }
        ASSERT_TRUE(reaches([&] { return !watcher.item().isEmpty(); }));
        auto activate = QDBusMessage::createMethodCall(watcher.item(), "/StatusNotifierItem",
                                                       "org.kde.StatusNotifierItem", "Activate");
        activate.setArguments({0, 0});
        bus.send(activate);
        ASSERT_TRUE(reaches([&] {
            return program.face.scene() && program.face.scene()->isPanelVisible() &&
                   program.face.scene()->panel()->isExposed();
        }));
        Hand hand(*program.face.scene()->panel());
        EXPECT_EQ(hand.text("phaseWord"), "Searching");
        ASSERT_TRUE(hand.click("quitOrbinex"));
        EXPECT_EQ(program.quits, 1);
    }
}

}  // namespace
}  // namespace orbinex::test
