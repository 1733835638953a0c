#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "input/input_injection_manager.h"
#include "input/x11/x11_connection.h"
#include "input/x11/x11_event_poster.h"
#include "input/x11/x11_keyboard_layout_source.h"
#include "input/x11/x_client.h"
#include "sim/virtual_main_queue.h"
#include "support/private_x_server.h"

namespace orbinex::test {

/// One instance of the program's input side on a server.
struct X11Input {
    explicit X11Input(const std::string& display, X11EventPoster::Options options = {})
        : connection(X11Connection::open(display)),
          poster(*connection, queue, options),
          layouts(*connection, queue),
          manager(poster, layouts) {}

    /// Lets the server carry out everything that was posted.
    void sync();
    /// Handles the server's events and lets the layout settle.
    void settle();

    VirtualMainQueue queue;
    std::unique_ptr<X11Connection> connection;
    X11EventPoster poster;
    X11KeyboardLayoutSource layouts;
    InputInjectionManager manager;
};

/// A server for all tests of a suite, and a client that watches. Every test must leave the keyboard and the
/// mouse as it found them.
class X11Test : public testing::Test {
  protected:
    static void SetUpTestSuite() { server = std::make_unique<PrivateXServer>(); }
    static void TearDownTestSuite() { server.reset(); }
    void SetUp() override;
    void TearDown() override;

    void selectLayout(const std::string& arguments);
    /// Types through the manager and lets the client see it as time passes.
    std::string typed(X11Input& input, const std::string& text, ModifierFlags modifiers = {});
    /// Runs the timers of the input side until nothing waits, with the client keeping up.
    void letTimePass(X11Input& input);

    static std::unique_ptr<PrivateXServer> server;
    std::unique_ptr<XClient> client;
    std::string keyboardMapBefore;
};

}  // namespace orbinex::test
