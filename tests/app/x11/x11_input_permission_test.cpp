#include "app/x11/x11_input_permission.h"

#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "app/accessibility_permission_manager.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "sim/recording_url_opener.h"
#include "sim/virtual_main_queue.h"
#include "support/private_x_server.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

TEST(X11InputPermission, isGrantedWhereInputArrives) {
    const PrivateXServer server;
    const auto connection = X11Connection::open(server.display());
    ASSERT_TRUE(connection);
    X11InputPermission permission(*connection);
    EXPECT_TRUE(permission.isGranted());
    EXPECT_TRUE(permission.request());
    EXPECT_EQ(permission.explanation(), "");
}

/// The obstacle is a screen with the name that older Xwayland gives; no other server can be made to offer the
/// extension by which a newer one is known.
TEST(X11InputPermission, isSeenByThePollWhenItIsGranted) {
    const PrivateXServer server;
    ASSERT_TRUE(server.run("xrandr --setmonitor XWAYLAND0 1280/340x900/240+0+0 screen"));
    const auto connection = X11Connection::open(server.display());
    ASSERT_TRUE(connection);
    X11InputPermission permission(*connection);
    VirtualMainQueue queue;
    RecordingUrlOpener urls;
    ActivationNotifier activation;
    AccessibilityPermissionManager manager(queue, permission, urls, activation);
    EXPECT_NE(manager.explanation->find("Wayland"), std::string::npos);
    manager.requestAccess();
    queue.advance(4s);
    EXPECT_FALSE(*manager.isAccessibilityGranted);
    ASSERT_TRUE(server.run("xrandr --delmonitor XWAYLAND0"));
    queue.advance(2s);
    EXPECT_TRUE(*manager.isAccessibilityGranted);
    EXPECT_EQ(*manager.explanation, "");
    EXPECT_FALSE(manager.isPolling());
}

TEST(X11InputPermission, isMissingWithoutTheExtensionAndNothingIsPosted) {
    const PrivateXServer server(640, 480, "XTEST");
    const auto connection = X11Connection::open(server.display());
    ASSERT_TRUE(connection);
    EXPECT_FALSE(connection->hasXTest());
    X11InputPermission permission(*connection);
    EXPECT_FALSE(permission.request());
    EXPECT_NE(permission.explanation().find("XTEST"), std::string::npos);
    VirtualMainQueue queue;
    X11EventPoster poster(*connection, queue);
    EXPECT_FALSE(poster.postMouse({.location = {10, 10}}));
    EXPECT_FALSE(poster.postKey({.keycode = 0, .flags = {}, .isDown = true}));
    EXPECT_FALSE(poster.postUnicode(u"x", true));
    EXPECT_FALSE(poster.postScroll({1, 0}));
    EXPECT_TRUE(connection->isAlive());
}

TEST(X11InputPermission, isMissingWithoutTheServer) {
    PrivateXServer server;
    const auto connection = X11Connection::open(server.display());
    ASSERT_TRUE(connection);
    X11InputPermission permission(*connection);
    server.kill();
    EXPECT_FALSE(permission.isGranted());
    EXPECT_FALSE(permission.request());
    EXPECT_NE(permission.explanation(), "");
}

}  // namespace
}  // namespace orbinex::test
