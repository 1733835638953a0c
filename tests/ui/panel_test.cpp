// The panel at the tray icon, as a person sees and uses it.

#include <gtest/gtest.h>

#include "app/system_settings_urls.h"
#include "pictures/faced_program.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

TEST(Panel, pulsesOnlyWhereItCanBeSeen) {
    FacedProgram program;
    Hand hand(program.panel());
    EXPECT_TRUE(hand.sees("orb/ring"));
    // As on a desktop that is not shown.
    program.panel().setProperty("isExposed", false);
    hand.settle();
    EXPECT_FALSE(hand.sees("orb/ring"));
}

TEST(Panel, showsOnlyWhatThereIs) {
    FacedProgram program;
    Hand hand(program.panel());
    for (const char* absent : {"trusted0", "nearby0", "trustedDivider", "nearbyDivider", "inputWarning"})
        EXPECT_FALSE(hand.sees(absent)) << absent;
    EXPECT_TRUE(hand.sees("openOrbinex"));
    program.trust("Studio");
    hand.settle();
    EXPECT_EQ(hand.text("statusLine"), "Waiting for your iPhone");
    EXPECT_EQ(hand.text("trusted0/status"), "Not nearby");
    EXPECT_TRUE(hand.sees("trusted0/connect"));
}

TEST(Panel, listsStrangersByStrengthAndConnectsTheOneThatIsClicked) {
    FacedProgram program;
    program.addPhone("Far", -80);
    program.addPhone("Near", -40);
    program.advance(2s);
    Hand hand(program.panel());
    EXPECT_EQ(hand.text("nearby0/name"), "Near");
    EXPECT_EQ(hand.text("nearby1/name"), "Far");
    EXPECT_EQ(hand.text("nearby1/status"), "New iPhone");
    ASSERT_TRUE(hand.click("nearby1/connect"));
    EXPECT_EQ(program.phase(), LinkPhase::connecting);
    EXPECT_EQ(hand.text("statusLine"), "Connecting to Far…");
    program.advance(3s);
    hand.settle();
    EXPECT_EQ(hand.text("trusted0/name"), "Far");
    EXPECT_EQ(hand.text("trusted0/status"), "Connected");
    EXPECT_FALSE(hand.sees("trusted0/connect")) << "it is the active one";
}

TEST(Panel, doesWhatTheButtonSaidWhenItWasPressed) {
    FacedProgram program;
    auto& phone = program.addPhone("Ada");
    program.bringTo(LinkPhase::connected, phone);
    phone.setInRange(false);
    program.advance(30s);
    Hand hand(program.panel());
    ASSERT_EQ(hand.text("panelAction"), "Search Again");
    const QPoint where = hand.place("panelAction");
    hand.press(where);
    // The phone is back before the button is let go.
    phone.setInRange(true);
    program.app.centralManager.connectNearbyDevice(phone.identifier());
    program.advance(10s);
    hand.settle();
    ASSERT_EQ(program.phase(), LinkPhase::connected);
    ASSERT_EQ(hand.text("panelAction"), "Disconnect");
    ASSERT_TRUE(hand.property("panelAction", "down").toBool()) << "letting go is a click";
    hand.letGo(where);
    program.advance(1s);
    EXPECT_EQ(program.phase(), LinkPhase::connected) << "Search Again is not Disconnect";
}

TEST(Panel, connectsNobodyByAPressOnARowThatIsGone) {
    FacedProgram program;
    auto& near = program.addPhone("Near", -40);
    program.addPhone("Far", -80);
    program.advance(2s);
    Hand hand(program.panel());
    const QPoint where = hand.place("nearby0/connect");
    hand.press(where);
    near.setInRange(false);
    program.advance(20s);
    hand.settle();
    ASSERT_EQ(hand.text("nearby0/name"), "Far");
    ASSERT_EQ(hand.place("nearby0/connect"), where) << "another's row is under the pointer";
    hand.letGo(where);
    EXPECT_EQ(program.phase(), LinkPhase::searching);
}

TEST(Panel, asksForInputControlAndStopsAskingOnceItIsGranted) {
    FacedProgram program({}, false);
    Hand hand(program.panel());
    ASSERT_TRUE(hand.sees("inputWarning"));
    EXPECT_FALSE(hand.sees("inputWarning/inputExplanation"));
    ASSERT_TRUE(hand.click("inputWarning/allow"));
    hand.settle();
    EXPECT_TRUE(hand.sees("inputWarning/inputExplanation"));
    EXPECT_EQ(hand.text("inputWarning/inputExplanation").toStdString(), program.shell.permission.missing);
    EXPECT_EQ(program.shell.permission.requests, 1);
    EXPECT_TRUE(program.app.accessibilityManager.isPolling());
    program.advance(4s);
    hand.settle();
    EXPECT_TRUE(hand.sees("inputWarning"));
    program.shell.permission.setGranted(true);
    program.advance(2s);
    hand.settle();
    EXPECT_FALSE(hand.sees("inputWarning"));
    EXPECT_FALSE(program.app.accessibilityManager.isPolling());
}

TEST(Panel, opensTheMainWindowQuitsAndCloses) {
    FacedProgram program;
    Hand hand(program.panel());
    ASSERT_TRUE(hand.click("openOrbinex"));
    EXPECT_TRUE(program.face.scene()->isMainWindowVisible());
    EXPECT_FALSE(program.face.scene()->isPanelVisible());
    Hand again(program.panel());
    again.key(Qt::Key_Escape);
    EXPECT_FALSE(program.face.scene()->isPanelVisible());
    program.advance(1s);
    Hand third(program.panel());
    ASSERT_TRUE(third.click("quitOrbinex"));
    EXPECT_EQ(program.quits, 1);
}

}  // namespace
}  // namespace orbinex::test
