// Which of the two ways scrolling takes: a device of the system's, or wheel clicks.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "input/x11/x11_test.h"
#include "support/allocation_counter.h"

namespace orbinex::test {
namespace {

/// An ordinary mouse of the test server.
constexpr const char* mouse = "Xvfb mouse";

class Sink final : public ScrollSink {
  public:
    explicit Sink(std::string name) : name_(std::move(name)) {}

    std::vector<ScrollEvent> events;
    bool isBroken = false;

    [[nodiscard]] std::string_view deviceName() const override { return name_; }
    bool scroll(const ScrollEvent& event) override {
        if (isBroken) return false;
        events.push_back(event);
        return true;
    }
    void dropRemainder() override { ++drops; }
    int drops = 0;

  private:
    std::string name_;
};

class X11ScrollSinkTest : public X11Test {
  protected:
    /// Scrolls down by a click's worth; true when wheel clicks did it.
    bool isByWheelClick(X11Input& input) {
        input.settle();
        client->takeEvents();
        input.manager.handle({DecodedPacket::MouseScroll{0, 5}});
        input.sync();
        for (const auto& event : client->takeEvents()) {
            if (event.type == XClient::Event::Type::buttonPress && event.detail == 5) return true;
        }
        return false;
    }
};

TEST_F(X11ScrollSinkTest, aDeviceThatTheServerListensToTakesTheScrollingWhole) {
    Sink sink(mouse);
    X11Input input(server->display(), {CommandKey::control, &sink});
    client->takeEvents();
    input.manager.handle({DecodedPacket::MouseScroll{0.5F, -20}});
    input.sync();
    EXPECT_EQ(sink.events, (std::vector<ScrollEvent>{{200, -5}}));
    EXPECT_TRUE(client->takeEvents().empty());
    input.manager.releaseAll();
    EXPECT_EQ(sink.drops, 1);
}

TEST_F(X11ScrollSinkTest, aDeviceThatTheServerDoesNotKnowIsLeftAlone) {
    for (const char* name : {"Orbinex scroll 1", "Xvfb", "Xvfb keyboard", "Virtual core pointer", ""}) {
        Sink sink(name);
        X11Input input(server->display(), {CommandKey::control, &sink});
        EXPECT_TRUE(isByWheelClick(input)) << name;
        EXPECT_TRUE(sink.events.empty()) << name;
    }
}

TEST_F(X11ScrollSinkTest, theDeviceMayComeLateAndGoAgain) {
    // The server makes a pointing device of this name for a new pair of cursor and focus.
    Sink sink("Orbinex scroll 1 XTEST pointer");
    X11Input input(server->display(), {CommandKey::control, &sink});
    EXPECT_TRUE(isByWheelClick(input)) << "before it has come";
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(server->run("xinput create-master 'Orbinex scroll 1'"));
        EXPECT_FALSE(isByWheelClick(input)) << "while it is there";
        ASSERT_TRUE(server->run("xinput remove-master 'Orbinex scroll 1 pointer'"));
        EXPECT_TRUE(isByWheelClick(input)) << "once it has gone";
    }
    EXPECT_EQ(sink.events.size(), 2U);
}

TEST_F(X11ScrollSinkTest, aDeviceThatIsOffOrMovesNoPointerIsLeftAlone) {
    Sink sink(mouse);
    X11Input input(server->display(), {CommandKey::control, &sink});
    const struct {
        const char* away;
        const char* back;
    } rows[] = {{"xinput disable 'Xvfb mouse'", "xinput enable 'Xvfb mouse'"},
                {"xinput float 'Xvfb mouse'", "xinput reattach 'Xvfb mouse' 'Virtual core pointer'"}};
    for (const auto& row : rows) {
        ASSERT_TRUE(server->run(row.away));
        EXPECT_TRUE(isByWheelClick(input)) << row.away;
        ASSERT_TRUE(server->run(row.back));
        EXPECT_FALSE(isByWheelClick(input)) << row.back;
    }
}

TEST_F(X11ScrollSinkTest, whatTheDeviceDoesNotTakeWheelClicksDo) {
    Sink sink(mouse);
    X11Input input(server->display(), {CommandKey::control, &sink});
    sink.isBroken = true;
    EXPECT_TRUE(isByWheelClick(input));
    sink.isBroken = false;
    EXPECT_FALSE(isByWheelClick(input));
}

TEST_F(X11ScrollSinkTest, watchingTheDeviceAllocatesNothing) {
    for (const char* name : {mouse, "Orbinex scroll 1"}) {
        Sink sink(name);
        sink.events.reserve(100);
        X11Input input(server->display(), {CommandKey::control, &sink});
        const auto scroll = [&] { input.manager.handle({DecodedPacket::MouseScroll{5, -10}}); };
        scroll();
        EXPECT_EQ(allocationsDuring(scroll), 0U) << name;
    }
}

}  // namespace
}  // namespace orbinex::test
