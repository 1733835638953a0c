// One walk through the phases of the link, in both windows at once.

#include <gtest/gtest.h>

#include "pictures/faced_program.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

/// What is read while "Ada", which is trusted, is the iPhone. Null where it may be anything.
struct Shown {
    LinkPhase phase;
    const char* word;
    const char* symbol;
    const char* colour;
    const char* panelStatus;
    const char* panelAction;
    const char* title;
    const char* detail;
    const char* action;
    const char* rowInPanel;
    const char* rowInWindow;
};
const Shown unavailable{LinkPhase::bluetoothUnavailable,
                        "Bluetooth Unavailable",
                        "exclamationmark.triangle.fill",
                        "#ff5c6c",
                        "Bluetooth unavailable",
                        "",
                        "Bluetooth Is Unavailable",
                        "Bluetooth is turned off. Turn it on in Control Center or System Settings.",
                        "Open Bluetooth Settings",
                        nullptr,
                        nullptr};
const Shown searching{LinkPhase::searching,
                      "Searching",
                      "dot.radiowaves.left.and.right",
                      "#00dcfe",
                      "Waiting for your iPhone",
                      "Search Again",
                      "Waiting for your iPhone",
                      nullptr,
                      "Search Again",
                      "Nearby",
                      "Nearby"};
const Shown underWay[] = {
    {LinkPhase::connecting, "Connecting", "arrow.triangle.2.circlepath", "#00dcfe", "Connecting to Ada…",
     "Cancel", "Ada", "Connecting to Ada…", "Cancel", "Connecting…", "Connecting…"},
    {LinkPhase::securing, "Securing", "lock.shield", "#00dcfe", "Securing connection…", "Cancel", "Ada",
     "Securing connection with Ada…", "Cancel", "Connecting…", "Securing…"},
    {LinkPhase::connected, "Connected", "checkmark.circle.fill", "#3ddc97", "Connected to Ada", "Disconnect",
     "Connected to Ada", "", "Disconnect", "Connected", "Connected"},
};

void check(FacedProgram& program, Hand& window, Hand& panel, const Shown& shown) {
    SCOPED_TRACE(shown.word);
    ASSERT_EQ(program.phase(), shown.phase);
    for (Hand* hand : {&window, &panel}) {
        hand->settle();
        EXPECT_EQ(hand->text("phaseWord"), shown.word);
        EXPECT_EQ(hand->property("orb", "symbol"), shown.symbol);
        EXPECT_EQ(hand->property("orb", "tint").value<QColor>().name(), shown.colour);
        EXPECT_EQ(hand->sees("orb/ring"),
                  shown.phase != LinkPhase::bluetoothUnavailable && shown.phase != LinkPhase::connected);
    }
    EXPECT_EQ(panel.text("statusLine"), shown.panelStatus);
    EXPECT_EQ(panel.text("panelAction"), shown.panelAction);
    EXPECT_EQ(window.text("connectionTitle"), shown.title);
    if (shown.detail) {
        EXPECT_EQ(window.text("connectionDetail"), shown.detail);
    }
    EXPECT_EQ(window.text("connectionAction"), shown.action);
    EXPECT_EQ(window.sees("pairingHint"), shown.phase == LinkPhase::securing);
    EXPECT_EQ(window.sees("setUpGuide"), shown.phase != LinkPhase::connected);
    if (!shown.rowInPanel) return;
    EXPECT_EQ(panel.text("trusted0/status"), shown.rowInPanel);
    EXPECT_EQ(panel.text("trusted1/status"), "Not nearby");
    EXPECT_EQ(panel.sees("trusted0/connect"), shown.phase == LinkPhase::searching);
    EXPECT_EQ(window.text("myPhone0/status"), shown.rowInWindow);
    EXPECT_EQ(window.text("myPhone1/status"), "Not nearby");
    EXPECT_EQ(window.sees("myPhone0/connect"), shown.phase == LinkPhase::searching);
    EXPECT_EQ(window.sees("myPhone0/disconnect"), shown.phase == LinkPhase::connected);
}

TEST(Phases, readAlikeInBothWindowsAndEndByTheirButtons) {
    for (const bool isInPanel : {false, true}) {
        FacedProgram program({{"autoConnect", false}});
        program.trust("Studio");
        auto& phone = program.addPhone("Ada");
        program.bringTo(LinkPhase::connected, phone);
        program.app.centralManager.disconnect();
        program.addPhone("Zoe");
        program.advance(2s);
        Hand window(program.window());
        Hand panel(program.panel());
        const auto press = [&] {
            EXPECT_TRUE(isInPanel ? panel.click("panelAction") : window.click("connectionAction"));
        };
        check(program, window, panel, searching);
        for (const bool isByTheSymbol : {false, true}) {
            program.advance(2s);
            window.settle();
            panel.settle();
            ASSERT_TRUE(window.sees("nearbyPhone0") && panel.sees("nearby0"));
            if (isByTheSymbol) {
                ASSERT_TRUE(window.click("searchAgain"));
            } else {
                press();
            }
            EXPECT_FALSE(window.sees("nearbyPhone0")) << "it begins with nothing found";
            EXPECT_FALSE(panel.sees("nearby0"));
        }
        for (const Shown& shown : underWay) {
            program.bringTo(shown.phase, phone);
            check(program, window, panel, shown);
            press();
            program.advance(1s);
            EXPECT_EQ(program.phase(), LinkPhase::searching) << shown.action;
        }
        program.advance(2s);
        panel.settle();
        window.settle();
        EXPECT_TRUE(isInPanel ? panel.click("trusted0/connect") : window.click("myPhone0/connect"));
        program.advance(2s);
        check(program, window, panel, underWay[2]);
        program.radio.setState(BluetoothState::poweredOff);
        program.advance(1s);
        check(program, window, panel, unavailable);
        EXPECT_FALSE(panel.sees("panelAction"));
    }
}

}  // namespace
}  // namespace orbinex::test
