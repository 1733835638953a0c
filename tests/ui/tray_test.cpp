// The tray icon on an X server of the test's own: in a tray that takes windows, and, where a session bus is
// given, in one that speaks to icons over it. The two exclude each other in one process.

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDeadlineTimer>
#include <QProcess>
#include <QThread>
#include <algorithm>
#include <functional>
#include <utility>

#include <gtest/gtest.h>

#include "pictures/faced_program.h"
#include "support/private_x_server.h"
#include "support/publish_in_test.h"
#include "ui/notification_service.h"
#include "ui/notifier_watcher.h"
#include "ui/root_listener.h"
#include "ui/x11_window_hints.h"
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
    const auto startTray = [] {
        Desktop::start(desktop().tray, "trayer",
                       {"--edge", "bottom", "--align", "right", "--widthtype", "request", "--height", "26"});
    };
    startTray();
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
    const auto token = program.presence.launchToken();
    EXPECT_TRUE(startupTime(token)) << "of the click: " << token;

    // The tray goes and comes back.
    window.close();
    desktop().tray.kill();
    const auto isKept = [&] {
        program.advance(1s);
        return program.face.scene() && program.face.scene()->isMainWindowVisible();
    };
    ASSERT_TRUE(reaches(isKept));
    EXPECT_EQ(program.face.scene()->mainWindow()->visibility(), QWindow::Minimized);
    EXPECT_TRUE(reaches(
        [] { return desktop().server.run("xprop -name Orbinex WM_STATE 2>/dev/null | grep -q Iconic"); }));
    desktop().tray.waitForFinished();
    startTray();
    ASSERT_TRUE(reaches([&] { return !isKept(); }));
    EXPECT_TRUE(reaches([&] { return program.face.trayIcon().geometry().y() > 800; })) << "in the new tray";
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

/// A desktop that speaks to icons over the bus. What the toolkit finds out about it holds for the process.
class NotifierTray : public testing::Test {
  protected:
    static constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";

    void SetUp() override {
        const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
        if (!address.startsWith("unix:") || address.contains("nonexistent")) GTEST_SKIP() << "no session bus";
        static_cast<void>(desktop());
        application();
        bus = QDBusConnection::connectToBus(address, "tray");
        ASSERT_TRUE(
            bus.registerObject("/StatusNotifierWatcher", &watcher,
                               QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties));
        ASSERT_TRUE(bus.registerObject(notificationPath, &notifications, QDBusConnection::ExportAllSlots));
        watcher.moveToThread(&thread);
        notifications.moveToThread(&thread);
        thread.start();
    }
    void TearDown() override {
        thread.quit();
        thread.wait();
        bus.unregisterService(watcherName);
        bus.unregisterService(notificationName);
        QDBusConnection::disconnectFromBus("tray");
    }

    /// A call to the icon of this process; the answer arrives through its event loop.
    QDBusPendingReply<QVariantMap> call(const char* interface, const char* method, const QVariantList& with) {
        auto message =
            QDBusMessage::createMethodCall(watcher.item(), "/StatusNotifierItem", interface, method);
        message.setArguments(with);
        QDBusPendingReply<QVariantMap> reply = bus.asyncCall(message);
        reaches([&] { return reply.isFinished(); });
        return reply;
    }
    /// What the icon tells of itself.
    struct IconFace {
        QString toolTip;
        /// Light pixels of the largest picture.
        int light = 0;
    };
    IconFace iconFace();
    void signal(const char* name, const QVariantList& values) {
        auto message = QDBusMessage::createSignal(notificationPath, notificationName, name);
        message.setArguments(values);
        bus.send(message);
    }

    NotifierWatcher watcher;
    NotificationService notifications;
    QThread thread;
    QDBusConnection bus{"none"};
};

NotifierTray::IconFace NotifierTray::iconFace() {
    const QVariantMap told =
        call("org.freedesktop.DBus.Properties", "GetAll", {"org.kde.StatusNotifierItem"}).value();
    IconFace face;
    QString icon;
    QByteArray pixels;
    int width = 0;
    int height = 0;
    const auto readPictures = [&](const QDBusArgument& from, const std::function<void()>& use) {
        for (from.beginArray(); !from.atEnd();) {
            from.beginStructure();
            from >> width >> height >> pixels;
            from.endStructure();
            use();
        }
        from.endArray();
    };
    const auto tip = told["ToolTip"].value<QDBusArgument>();
    tip.beginStructure();
    tip >> icon;
    readPictures(tip, [] {});
    QString description;
    tip >> face.toolTip >> description;
    // What it was read with is let go of.
    tip.endStructure();
    int largest = 0;
    readPictures(told["IconPixmap"].value<QDBusArgument>(), [&] {
        if (std::exchange(largest, std::max(largest, width)) >= width) return;
        face.light = 0;
        // Opacity, red, green, blue.
        for (qsizetype at = 0; at + 3 < pixels.size(); at += 4)
            face.light += static_cast<uchar>(pixels[at]) > 200 && static_cast<uchar>(pixels[at + 1]) > 200;
    });
    return face;
}

TEST_F(NotifierTray, opensThePanelWhenTheIconIsActivated) {
    // The first program runs before there is a tray, the second starts after it.
    for (const bool isLate : {true, false}) {
        watcher.forget();
        FacedProgram program;
        if (isLate) {
            QCoreApplication::processEvents();
            ASSERT_FALSE(program.face.trayIcon().isShown());
            ASSERT_TRUE(bus.registerService(watcherName));
        }
        ASSERT_TRUE(reaches([&] { return !watcher.item().isEmpty(); }));
        call("org.kde.StatusNotifierItem", "Activate", {0, 0});
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

TEST_F(NotifierTray, showsThePhaseInTheIcon) {
    ASSERT_TRUE(bus.registerService(watcherName));
    FacedProgram program;
    ASSERT_TRUE(reaches([&] { return !watcher.item().isEmpty(); }));
    auto& phone = program.addPhone("Ada");
    const IconFace searching = iconFace();
    program.bringTo(LinkPhase::securing, phone);
    const IconFace securing = iconFace();
    phone.dropLink();
    program.advance(1s);
    program.bringTo(LinkPhase::connected, phone);
    const IconFace connected = iconFace();
    EXPECT_EQ(searching.toolTip, "Orbinex — Searching");
    EXPECT_EQ(securing.toolTip, "Orbinex — Securing");
    EXPECT_EQ(connected.toolTip, "Orbinex — Connected");
    EXPECT_GT(searching.light, 50) << "it is drawn";
    EXPECT_EQ(securing.light, searching.light);
    EXPECT_GT(connected.light, 2 * searching.light) << "the mouse is filled";
}

TEST_F(NotifierTray, notifiesOfAnAlertAndOpensTheWindowByAClick) {
    ASSERT_TRUE(bus.registerService(watcherName));
    ASSERT_TRUE(bus.registerService(notificationName));
    FacedProgram program;
    ASSERT_TRUE(reaches([&] { return !watcher.item().isEmpty(); }));
    PublishInTest::set(program.app.centralManager.alert,
                       {BLEAlert{UUID::random(), "<b>x</b> Isn't Nearby", "Where is <b>x</b>?"}});
    // The answer to the first has to arrive before another can take its place.
    ASSERT_TRUE(reaches([&] {
        const auto told = notifications.told();
        if (told.empty()) return false;
        if (told.back().replaces == NotificationService::id) return true;
        PublishInTest::set(program.app.centralManager.alert, {BLEAlert{UUID::random(), "Second", "Message"}});
        return false;
    })) << "one at a time";
    const auto told = notifications.told();
    EXPECT_EQ(told[0].title, "<b>x</b> Isn't Nearby");
    EXPECT_EQ(told[0].text, "Where is &lt;b&gt;x&lt;/b&gt;?");
    EXPECT_EQ(told[0].actions, (QStringList{"default", "Open Orbinex…"}));
    EXPECT_EQ(told[0].replaces, 0U);
    EXPECT_FALSE(program.face.hasVisibleWindows());

    RootListener root(desktop().server.display());
    signal("ActionInvoked", {NotificationService::id + 1, "default"});
    signal("ActivationToken", {NotificationService::id, "desktop_TIME4711"});
    signal("ActionInvoked", {NotificationService::id, "default"});
    ASSERT_TRUE(reaches([&] { return program.face.scene() && program.face.scene()->isMainWindowSeen(); }));
    bool isActivatedByToken = false;
    EXPECT_TRUE(reaches([&] {
        for (const auto& message : root.take())
            isActivatedByToken |= message.type == "_NET_ACTIVE_WINDOW" && message.values[1] == 4711;
        return isActivatedByToken;
    }));
    EXPECT_EQ(Hand(program.window()).text("messageTitle"), "Second");
}

TEST_F(NotifierTray, tellsOnceHowToReachAndEndItWhereThereIsNoTray) {
    ASSERT_TRUE(bus.registerService(notificationName));
    FacedProgram::Stored stored;
    for (const bool isFirst : {true, false}) {
        FacedProgram program(stored, true, BluetoothState::poweredOff);
        program.advance(TrayIcon::trayPatience);
        ASSERT_TRUE(program.face.scene() && program.face.scene()->isMainWindowVisible());
        EXPECT_EQ(program.face.scene()->mainWindow()->visibility(), QWindow::Minimized);
        const std::size_t expected = isFirst ? 2 : 3;
        ASSERT_TRUE(reaches([&] { return notifications.told().size() == expected; }));
        EXPECT_EQ(notifications.told()[isFirst ? 0 : 2].actions,
                  (QStringList{"default", "Open Bluetooth Settings"}));
        stored = program.defaults.values;
        if (!isFirst) break;
        const auto told = notifications.told()[1];
        EXPECT_EQ(told.replaces, 0U) << "beside the one about Bluetooth";
        EXPECT_EQ(told.title, "Orbinex Goes On Running");
        EXPECT_EQ(told.actions, (QStringList{"default", "Open Orbinex…", "1", "Quit Orbinex"}));
        ASSERT_TRUE(reaches([&] { return program.defaults.boolean("toldOfTaskBarEntry") == true; }));
        stored = program.defaults.values;
        signal("ActionInvoked", {NotificationService::id, "1"});
        EXPECT_TRUE(reaches([&] { return program.quits == 1; }));
    }
}

}  // namespace
}  // namespace orbinex::test
