#include "editor_bridge/linux/x11_workspace.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include "sim/virtual_main_queue.h"
#include "support/child_process.h"
#include "support/private_x_server.h"

namespace orbinex::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using Names = std::vector<std::string>;

/// A program with windows of the class that the test wants.
class WindowMaker {
  public:
    explicit WindowMaker(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    }
    WindowMaker(const WindowMaker&) = delete;
    WindowMaker& operator=(const WindowMaker&) = delete;
    ~WindowMaker() { xcb_disconnect(connection_); }

    struct Wanted {
        std::string windowClass = {};
        pid_t pid = 0;
        std::string type = {};
        std::string title = {};
    };
    xcb_window_t show(const Wanted& wanted) {
        const xcb_window_t window = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 10, 10, 100, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        if (!wanted.windowClass.empty()) setClass(window, wanted.windowClass);
        if (wanted.pid != 0)
            set(window, atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, static_cast<std::uint32_t>(wanted.pid));
        if (!wanted.type.empty())
            set(window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM,
                atom("_NET_WM_WINDOW_TYPE_" + wanted.type));
        if (!wanted.title.empty()) setText(window, XCB_ATOM_WM_NAME, wanted.title);
        xcb_map_window(connection_, window);
        xcb_flush(connection_);
        return window;
    }
    void setClass(xcb_window_t window, const std::string& name) {
        setText(window, XCB_ATOM_WM_CLASS, "instance" + std::string(1, '\0') + name + std::string(1, '\0'));
        xcb_flush(connection_);
    }
    void close(xcb_window_t window) {
        xcb_destroy_window(connection_, window);
        xcb_flush(connection_);
    }
    /// Asks the window manager, as a taskbar does.
    void activate(xcb_window_t window) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atom("_NET_ACTIVE_WINDOW");
        message.data.data32[0] = 2;
        xcb_send_event(connection_, 0, root_,
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(connection_);
    }
    /// What a window manager says.
    void setRoot(const std::string& property, std::uint32_t value) {
        set(root_, atom(property), XCB_ATOM_WINDOW, value);
        xcb_flush(connection_);
    }

    /// One that has looked at the windows that there were, and manages all that come.
    bool hasWindowManager() {
        const auto cookie = xcb_get_property(connection_, 0, root_, atom("MANAGED"), XCB_ATOM_ANY, 0, 1);
        auto* reply = xcb_get_property_reply(connection_, cookie, nullptr);
        const bool isThere = reply && reply->type != XCB_ATOM_NONE;
        std::free(reply);
        return isThere;
    }

  private:
    xcb_atom_t atom(const std::string& name) {
        const auto cookie =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
        auto* reply = xcb_intern_atom_reply(connection_, cookie, nullptr);
        const xcb_atom_t result = reply ? reply->atom : 0;
        std::free(reply);
        return result;
    }
    void set(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::uint32_t value) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, type, 32, 1, &value);
    }
    void setText(xcb_window_t window, xcb_atom_t property, const std::string& text) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    }

    xcb_connection_t* connection_;
    xcb_window_t root_ = 0;
};

/// A folder of its own.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string folder = fs::temp_directory_path() / "workspace-XXXXXX";
        if (::mkdtemp(folder.data())) path_ = folder;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { fs::remove_all(path_); }
    [[nodiscard]] const fs::path& path() const { return path_; }

  private:
    fs::path path_;
};

/// A process whose executable has the name that the test wants, shown among the processes of a folder.
class NamedProcess {
  public:
    NamedProcess(const std::string& name, const TemporaryFolder& processes) {
        const fs::path program = folder_.path() / name;
        fs::copy_file("/bin/sleep", program);
        process_ = ChildProcess({program.string(), "600"});
        const std::string number = std::to_string(pid());
        fs::create_symlink("/proc/" + number, processes.path() / number);
    }
    void kill() { process_.kill(); }
    [[nodiscard]] pid_t pid() const { return process_.pid(); }

  private:
    TemporaryFolder folder_;
    ChildProcess process_;
};

/// A workspace on a server of its own, and what it tells. Time is ours, but for what other programs take.
class X11WorkspaceTest : public testing::Test {
  protected:
    ~X11WorkspaceTest() override {
        subscriptions.clear();
        workspace.reset();
        // There is no event loop that would delete what is to be deleted later.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void open(bool withWindowManager = true) {
        if (withWindowManager) {
            ASSERT_TRUE(
                server.run("openbox --sm-disable --startup 'xprop -root -f MANAGED 8s -set MANAGED yes' "
                           ">/dev/null 2>&1 &"));
            WindowMaker maker(server.display());
            ASSERT_TRUE(waitUntil([&] { return maker.hasWindowManager(); }));
        }
        workspace.emplace(queue, server.display(), DesktopFiles({}, ""), processes.path());
        observe();
    }
    void observe() {
        subscriptions.push_back(workspace->didLaunch.subscribe([this](const auto& application) {
            EXPECT_THAT(workspace->runningApplications(), testing::Contains(application));
            told.push_back("+" + application.bundleID);
        }));
        subscriptions.push_back(workspace->didTerminate.subscribe([this](const auto& application) {
            EXPECT_THAT(workspace->runningApplications(), testing::Not(testing::Contains(application)));
            told.push_back("-" + application.bundleID);
        }));
        subscriptions.push_back(workspace->didActivate.subscribe([this](const auto& application) {
            EXPECT_EQ(workspace->frontmostApplication(), application);
            told.push_back("*" + application.bundleID);
        }));
    }
    /// False when the condition does not come to hold within a generous time. `step`: of our own time.
    bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds step = {}) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > deadline) return false;
            QCoreApplication::processEvents();
            queue.advance(step);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }
    bool waitForFront(const std::string& bundleID) {
        return waitUntil([&] { return front() == bundleID; });
    }
    bool waitToBeTold(const std::string& what) {
        return waitUntil([&] { return std::ranges::find(told, what) != told.end(); });
    }
    [[nodiscard]] std::string front() const {
        const auto application = workspace->frontmostApplication();
        return application ? application->bundleID : "none";
    }
    [[nodiscard]] Names running() const {
        Names names;
        for (const auto& application : workspace->runningApplications())
            names.push_back(application.bundleID);
        return names;
    }

    int argc = 1;
    char name[5] = "test";
    char* argv[2] = {name, nullptr};
    QCoreApplication qt{argc, argv};
    PrivateXServer server;
    /// Editors that really run here are none of the test's.
    TemporaryFolder processes;
    VirtualMainQueue queue;
    std::optional<X11Workspace> workspace;
    std::vector<Subscription> subscriptions;
    Names told;
};

constexpr const char* resolve = "com.blackmagic-design.DaVinciResolve";

TEST_F(X11WorkspaceTest, tellsHowApplicationsComeAndGo) {
    open();
    WindowMaker maker(server.display());
    const auto first = maker.show({.windowClass = "Paint"});
    ASSERT_TRUE(waitForFront("Paint"));
    const auto second = maker.show({.windowClass = "Write"});
    ASSERT_TRUE(waitForFront("Write"));
    const auto third = maker.show({.windowClass = "Paint"});
    ASSERT_TRUE(waitForFront("Paint"));
    EXPECT_THAT(told, ElementsAre("+Paint", "*Paint", "+Write", "*Write", "*Paint"));
    EXPECT_THAT(running(), ElementsAre("Paint", "Write"));
    told.clear();

    maker.activate(second);
    ASSERT_TRUE(waitForFront("Write"));
    maker.close(third);
    maker.close(second);
    ASSERT_TRUE(waitToBeTold("-Write"));
    ASSERT_TRUE(waitForFront("Paint"));
    maker.close(first);
    ASSERT_TRUE(waitToBeTold("-Paint"));
    EXPECT_EQ(front(), "none");
    EXPECT_THAT(running(), IsEmpty());
    EXPECT_THAT(told, ElementsAre("*Write", "-Write", "*Paint", "-Paint"));
}

TEST_F(X11WorkspaceTest, passesOverWhatIsNoApplication) {
    open();
    WindowMaker maker(server.display());
    for (const char* type : {"DOCK", "DESKTOP", "TOOLBAR"})
        (void)maker.show({.windowClass = type, .type = type});
    (void)maker.show({.windowClass = "Dialog", .type = "DIALOG"});
    (void)maker.show({.title = "Only a title"});
    ASSERT_TRUE(waitToBeTold("+"));
    ASSERT_TRUE(waitToBeTold("+Dialog"));
    EXPECT_EQ(workspace->runningApplications().size(), 2U) << testing::PrintToString(running());
    EXPECT_THAT(workspace->runningApplications(),
                testing::Contains(RunningApplication{.bundleID = "", .localizedName = "Only a title"}));
}

TEST_F(X11WorkspaceTest, readsAgainWhatAWindowSaysLate) {
    open();
    WindowMaker maker(server.display());
    const auto window = maker.show({.windowClass = "Early"});
    ASSERT_TRUE(waitForFront("Early"));
    maker.setClass(window, "resolve");
    ASSERT_TRUE(waitForFront(resolve));
    EXPECT_THAT(running(), ElementsAre(resolve));
}

TEST_F(X11WorkspaceTest, keepsTheApplicationWhileItsWindowsTakeTurns) {
    open(false);
    WindowMaker maker(server.display());
    const auto window = maker.show({.windowClass = "Paint"});
    maker.setRoot("_NET_CLIENT_LIST", window);
    maker.setRoot("_NET_ACTIVE_WINDOW", window);
    ASSERT_TRUE(waitForFront("Paint"));
    maker.setRoot("_NET_ACTIVE_WINDOW", 0);
    ASSERT_TRUE(waitUntil([this] { return queue.pendingTimers() > 1; })) << "the wait for the next window";
    EXPECT_EQ(front(), "Paint");
    maker.setRoot("_NET_ACTIVE_WINDOW", window);
    ASSERT_TRUE(waitUntil([this] { return queue.pendingTimers() == 1; }));
    EXPECT_THAT(told, ElementsAre("+Paint", "*Paint"));

    maker.setRoot("_NET_ACTIVE_WINDOW", 0);
    ASSERT_TRUE(waitUntil([this] { return queue.pendingTimers() > 1; }));
    queue.advance(X11Workspace::settlingTime);
    EXPECT_EQ(front(), "none");
    EXPECT_THAT(running(), ElementsAre("Paint"));
    // A manager that names windows which do not exist.
    maker.setRoot("_NET_ACTIVE_WINDOW", 0xdead);
    maker.setRoot("_NET_CLIENT_LIST", 0xbeef);
    ASSERT_TRUE(waitToBeTold("-Paint"));
    EXPECT_EQ(front(), "none");
}

TEST_F(X11WorkspaceTest, knowsEditorsByTheirProcesses) {
    NamedProcess before("ProTools.exe", processes);
    open(false);
    ASSERT_TRUE(waitUntil([this] { return running() == Names{"com.avid.ProTools"}; },
                          std::chrono::milliseconds(100)));
    told.clear();
    NamedProcess editor("resolve", processes);
    NamedProcess another("resolve", processes);
    ASSERT_TRUE(waitUntil([this] { return running().size() == 2; }, std::chrono::milliseconds(100)));
    queue.advance(EditorProcesses::interval);
    EXPECT_THAT(running(), ElementsAre("com.avid.ProTools", resolve));
    EXPECT_EQ(front(), "none");

    // Their ends are told without looking: our time stands still.
    editor.kill();
    before.kill();
    ASSERT_TRUE(waitToBeTold("-com.avid.ProTools"));
    EXPECT_THAT(running(), ElementsAre(resolve)) << "another process of the editor still runs";
    another.kill();
    ASSERT_TRUE(waitToBeTold(std::string("-") + resolve));
    EXPECT_THAT(told,
                ElementsAre(std::string("+") + resolve, "-com.avid.ProTools", std::string("-") + resolve));
}

TEST_F(X11WorkspaceTest, keepsAnEditorThatClosesItsWindows) {
    open();
    NamedProcess editor("resolve", processes);
    WindowMaker maker(server.display());
    // Wherever its window calls itself something else, the process tells.
    const auto splash = maker.show({.windowClass = "Splash", .pid = editor.pid()});
    ASSERT_TRUE(waitForFront(resolve));
    const auto window = maker.show({.windowClass = "resolve"});
    ASSERT_TRUE(waitUntil([&] { return workspace->runningApplications().size() == 1; }));
    maker.close(splash);
    maker.close(window);
    ASSERT_TRUE(waitUntil([this] { return queue.pendingTimers() > 1; })) << "no window is active any more";
    queue.advance(X11Workspace::settlingTime);
    EXPECT_EQ(front(), "none");
    EXPECT_THAT(running(), ElementsAre(resolve));
    editor.kill();
    EXPECT_TRUE(waitToBeTold(std::string("-") + resolve));
}

TEST_F(X11WorkspaceTest, outlivesItsServer) {
    open();
    NamedProcess editor("resolve", processes);
    {
        WindowMaker maker(server.display());
        (void)maker.show({.windowClass = "Paint"});
        ASSERT_TRUE(waitForFront("Paint"));
        ASSERT_TRUE(waitUntil([this] { return running().size() == 2; }, std::chrono::milliseconds(100)));
        server.kill();
    }
    ASSERT_TRUE(waitToBeTold("-Paint"));
    EXPECT_EQ(front(), "none");
    EXPECT_THAT(running(), ElementsAre(resolve));
    editor.kill();
    EXPECT_TRUE(waitToBeTold(std::string("-") + resolve));

    const X11Workspace without(queue, server.display(), DesktopFiles({}, ""), processes.path());
    EXPECT_THAT(without.runningApplications(), IsEmpty());
}

}  // namespace
}  // namespace orbinex::test
