// The windows as they are worked without a pointer, by the keyboard and by assistive technology, and what the
// two must not do behind a person's back.

#include <QAccessible>
#include <QScopeGuard>

#include <gtest/gtest.h>

#include "pictures/faced_program.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

QAccessibleInterface* faceOf(QQuickWindow& window, const char* path) {
    QQuickItem* const item = findItem(window.contentItem(), path);
    return item ? QAccessible::queryAccessibleInterface(item) : nullptr;
}

/// As a screen reader does it.
bool act(QQuickWindow& window, const char* path, const QString& action) {
    Hand hand(window);
    QAccessibleInterface* const face = faceOf(window, path);
    QAccessibleActionInterface* const actions = face ? face->actionInterface() : nullptr;
    if (!actions || !actions->actionNames().contains(action)) return false;
    actions->doAction(action);
    hand.settle();
    return true;
}

TEST(AssistiveTechnology, pressesButtonsAndTurnsSwitches) {
    QAccessible::setActive(true);
    const auto end = qScopeGuard([] { QAccessible::setActive(false); });
    const QString press = QAccessibleActionInterface::pressAction();
    const QString toggle = QAccessibleActionInterface::toggleAction();
    FacedProgram program({}, false);
    program.trust("Ada");
    QQuickWindow& window = program.window();
    ASSERT_TRUE(act(window, "allowAccess", press));
    EXPECT_EQ(program.shell.permission.requests, 1);

    const auto isOn = [&] { return bool(faceOf(window, "openAtLogin/switch")->state().checked); };
    for (const auto& action : {press, toggle}) {
        program.shell.loginItem.failure = "The folder is read-only.";
        const bool before = isOn();
        ASSERT_TRUE(act(window, "openAtLogin/switch", action));
        EXPECT_EQ(isOn(), before) << "it shows what is, not what was asked for";
        program.shell.loginItem.failure = std::nullopt;
        ASSERT_TRUE(act(window, "openAtLogin/switch", action));
        EXPECT_EQ(isOn(), !before);
        EXPECT_EQ(program.app.loginItemManager.isOn(), !before);
    }

    ASSERT_TRUE(act(window, "myPhone0/more", press));
    ASSERT_TRUE(act(window, "forget", press));
    ASSERT_TRUE(act(window, "messageButton0", press));
    EXPECT_TRUE(program.app.trustStore.devices->empty());
    program.relocation.offerMoveIfNeeded();
    program.advance(1s);
    ASSERT_TRUE(act(window, "suppression", toggle));
    ASSERT_TRUE(act(window, "messageButton1", press));
    EXPECT_EQ(program.defaults.boolean(AppRelocationManager::suppressionKey), true);
    ASSERT_TRUE(act(program.panel(), "quitOrbinex", press));
    EXPECT_EQ(program.quits, 1);
}

/// Whether the keyboard is on something that is seen, and seen to be there.
bool isShownFocus(QQuickWindow& window) {
    const QQuickItem* const focused = window.activeFocusItem();
    return focused && focused->isVisible() && focused->property("visualFocus").toBool();
}

bool tabTo(Hand& hand, QQuickWindow& window, const char* path) {
    QQuickItem* const wanted = findItem(window.contentItem(), path);
    for (int step = 0; wanted && step < 100 && window.activeFocusItem() != wanted; ++step)
        hand.key(Qt::Key_Tab);
    return wanted && window.activeFocusItem() == wanted;
}

TEST(Keyboard, leavesWhatIsNotSeenAnyMore) {
    FacedProgram program;
    program.addPhone("Ada", -40);
    program.addPhone("Zoe", -60);
    program.advance(2s);
    QQuickWindow& window = program.window();
    Hand hand(window);
    // The row goes as its iPhone is trusted and connected.
    ASSERT_TRUE(tabTo(hand, window, "nearbyPhone0/trust"));
    hand.hold(Qt::Key_Return, 3);
    EXPECT_TRUE(isShownFocus(window));
    program.advance(3s);
    hand.settle();
    ASSERT_EQ(program.phase(), LinkPhase::connected);
    EXPECT_EQ(program.app.centralManager.activeDevice.get()->name, "Ada");
    EXPECT_TRUE(isShownFocus(window));

    // The button goes, and another comes in its place.
    ASSERT_TRUE(tabTo(hand, window, "myPhone0/disconnect"));
    hand.hold(Qt::Key_Return, 3);
    program.advance(1s);
    hand.settle();
    EXPECT_EQ(program.phase(), LinkPhase::searching);
    EXPECT_TRUE(isShownFocus(window));
    EXPECT_FALSE(hand.sees("forget")) << "the same Return opens no menu";
    program.radio.setState(BluetoothState::poweredOff);
    program.advance(1s);
    hand.settle();
    EXPECT_TRUE(isShownFocus(window));
}

TEST(Keyboard, staysWithARowThatMoves) {
    FacedProgram program;
    program.addPhone("Ada", -50);
    program.advance(2s);
    QQuickWindow& window = program.window();
    Hand hand(window);
    ASSERT_TRUE(tabTo(hand, window, "nearbyPhone0/trust"));
    program.addPhone("Zoe", -30);
    program.advance(4s);
    hand.settle();
    ASSERT_EQ(hand.text("nearbyPhone0/name"), "Zoe");
    EXPECT_TRUE(isShownFocus(window));
    EXPECT_EQ(window.activeFocusItem(), findItem(window.contentItem(), "nearbyPhone1/trust"));
}

TEST(Keyboard, pressesOnceHoweverLongAKeyIsHeld) {
    FacedProgram program({}, false);
    QQuickWindow& window = program.window();
    Hand hand(window);
    int requests = 0;
    ASSERT_TRUE(tabTo(hand, window, "allowAccess"));
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        hand.hold(key, 3);
        EXPECT_EQ(program.shell.permission.requests, ++requests) << key;
    }
    ASSERT_TRUE(tabTo(hand, window, "autoConnect/switch"));
    bool isOn = true;
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        hand.hold(key, 3);
        EXPECT_EQ(*program.preferences.autoConnect, isOn = !isOn) << key;
    }
}

TEST(Keyboard, goesThroughThePanelFromTopToBottom) {
    FacedProgram program({}, false);
    program.trust("Ada");
    program.trust("Zoe");
    program.addPhone("New");
    program.advance(2s);
    QQuickWindow& panel = program.panel();
    Hand hand(panel);
    const char* const order[] = {"panelAction",     "trusted0/connect",   "trusted1/connect",
                                 "nearby0/connect", "inputWarning/allow", "openOrbinex",
                                 "quitOrbinex",     "panelAction"};
    for (const char* path : order) {
        hand.key(Qt::Key_Tab);
        EXPECT_EQ(panel.activeFocusItem(), findItem(panel.contentItem(), path)) << path;
        EXPECT_TRUE(isShownFocus(panel)) << path;
    }
}

TEST(Keyboard, opensClosesAndQuitsByShortcuts) {
    FacedProgram program;
    Hand panel(program.panel());
    panel.key(Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(program.face.scene()->isMainWindowVisible());
    EXPECT_FALSE(program.face.scene()->isPanelVisible());
    Hand window(program.window());
    window.key(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(program.quits, 1);
    window.key(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(program.face.scene()->isMainWindowVisible());
    program.advance(Interface::clickTime);
    Hand again(program.panel());
    again.key(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(program.face.scene()->isPanelVisible());
}

TEST(Keyboard, worksTheMenuOfAnIPhone) {
    FacedProgram program;
    program.trust("Ada");
    QQuickWindow& window = program.window();
    Hand hand(window);
    ASSERT_TRUE(tabTo(hand, window, "myPhone0/more"));
    hand.key(Qt::Key_Return);
    ASSERT_TRUE(hand.sees("forget"));
    hand.key(Qt::Key_Escape);
    EXPECT_FALSE(hand.sees("forget"));
    EXPECT_EQ(window.activeFocusItem(), findItem(window.contentItem(), "myPhone0/more"));
    hand.key(Qt::Key_Space);
    hand.key(Qt::Key_Down);
    hand.key(Qt::Key_Return);
    EXPECT_EQ(hand.text("messageTitle"), "Forget Ada?");
    hand.key(Qt::Key_Escape);
    EXPECT_TRUE(isShownFocus(window)) << "where it was before the message";
}

TEST(Scrolling, leavesWhatThePointerPressesWhereItIs) {
    FacedProgram program;
    program.addPhone("Ada");
    program.advance(2s);
    QQuickWindow& window = program.window();
    Hand hand(window);
    const QQuickItem* const button = findItem(window.contentItem(), "nearbyPhone0/trust");
    ASSERT_TRUE(button);
    // The window ends in the middle of the button.
    window.resize(860, static_cast<int>(button->mapToScene({0, button->height() / 2}).y()));
    hand.settle();
    const QPoint where = button->mapToScene({button->width() / 2, button->height() / 4}).toPoint();
    ASSERT_LT(where.y(), window.height());
    hand.press(where);
    hand.settle();
    hand.moveTo(where + QPoint(0, 1));
    hand.letGo(where + QPoint(0, 1));
    EXPECT_EQ(hand.property("scroller", "contentY"), 0);
    EXPECT_EQ(program.phase(), LinkPhase::connecting);
}

TEST(Scrolling, isDoneByKeysAndTheWheelButNotByDragging) {
    FacedProgram program;
    QQuickWindow& window = program.window();
    window.resize(440, 400);
    Hand hand(window);
    const auto at = [&] { return hand.property("scroller", "contentY").toReal(); };
    const qreal end = hand.property("scroller", "contentHeight").toReal() - 400;
    ASSERT_GT(end, 800);
    hand.key(Qt::Key_PageDown);
    EXPECT_EQ(at(), 360);
    hand.key(Qt::Key_End);
    EXPECT_EQ(at(), end);
    EXPECT_FALSE(hand.sees("orb/ring")) << "it is out of view";
    hand.key(Qt::Key_PageUp);
    EXPECT_EQ(at(), end - 360);
    hand.key(Qt::Key_Home);
    EXPECT_EQ(at(), 0);
    EXPECT_TRUE(hand.sees("orb/ring"));
    ASSERT_TRUE(hand.turnWheel("scroller", {0, -240}));
    EXPECT_GT(at(), 0);
    ASSERT_TRUE(hand.turnWheel("scroller", {0, 480}));
    EXPECT_EQ(at(), 0);
    ASSERT_TRUE(hand.drag("scroller", {0, -150}));
    EXPECT_EQ(at(), 0);
}

}  // namespace
}  // namespace orbinex::test
