// Message boxes in the main window.

#include <gtest/gtest.h>

#include "app/two_prompts.h"
#include "pictures/faced_program.h"
#include "support/publish_in_test.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

BLEAlert alert(const std::string& title) {
    return {UUID::random(), title, "What to do about it."};
}

TEST(Message, showsTheLinksAlertUntilOk) {
    FacedProgram program;
    Hand hand(program.window());
    EXPECT_FALSE(hand.sees("messageTitle"));
    program.app.centralManager.connectTrustedDevice(program.trust("Studio"));
    hand.settle();
    EXPECT_EQ(hand.text("messageTitle"), "Studio Isn't Nearby");
    EXPECT_EQ(hand.text("messageText"),
              QString::fromStdString(program.app.centralManager.alert.get()->message));
    EXPECT_EQ(hand.text("messageButton0"), "OK");
    EXPECT_EQ(hand.property("messageButton0", "fill").value<QColor>().name(), "#00b8d4");
    ASSERT_TRUE(hand.click("messageButton0"));
    EXPECT_FALSE(hand.sees("messageTitle"));
    EXPECT_EQ(*program.app.centralManager.alert, std::nullopt);
}

TEST(Message, keepsTheMarksOfOtherScriptsOutOfItsLine) {
    FacedProgram program;
    Hand hand(program.window());
    PublishInTest::set(program.app.centralManager.alert, {alert("Pair \u200FAda\nAgain")});
    hand.settle();
    EXPECT_EQ(hand.text("messageTitle"), "Pair Ada?Again");
}

TEST(Message, isAnsweredByTheKeyboardAlone) {
    FacedProgram program;
    PublishInTest::set(program.app.centralManager.alert, {alert("First")});
    Hand hand(program.window());
    hand.key(Qt::Key_Return);
    EXPECT_EQ(*program.app.centralManager.alert, std::nullopt);
    PublishInTest::set(program.app.centralManager.alert, {alert("Second")});
    hand.settle();
    hand.key(Qt::Key_Escape);
    EXPECT_EQ(*program.app.centralManager.alert, std::nullopt);
    EXPECT_FALSE(hand.sees("messageTitle"));
}

TEST(Message, doesNotTakeTheAnswerToAnEarlierOne) {
    FacedProgram program;
    PublishInTest::set(program.app.centralManager.alert, {alert("First")});
    Hand hand(program.window());
    const int first =
        program.face.scene()->mainWindow()->findChild<QObject*>("messageBox")->property("serial").toInt();
    PublishInTest::set(program.app.centralManager.alert, {alert("Second")});
    hand.settle();
    EXPECT_EQ(hand.text("messageTitle"), "Second");
    ASSERT_GT(first, 0);
    QMetaObject::invokeMethod(program.face.scene()->model().message(), "answer", Q_ARG(int, first),
                              Q_ARG(int, 0), Q_ARG(bool, false));
    EXPECT_EQ(program.app.centralManager.alert.get()->title, "Second");
}

TEST(Message, asksBeforeItForgets) {
    FacedProgram program;
    const auto device = program.trust("Ada's iPhone");
    Hand hand(program.window());
    EXPECT_FALSE(hand.sees("forget"));
    ASSERT_TRUE(hand.click("myPhone0/more"));
    ASSERT_TRUE(hand.click("forget"));
    EXPECT_EQ(hand.text("messageTitle"), "Forget Ada's iPhone?");
    EXPECT_EQ(hand.text("messageButton0"), "Forget");
    EXPECT_EQ(hand.property("messageButton0", "fill").value<QColor>().name(), "#ff5c6c") << "it takes away";
    EXPECT_EQ(hand.property("messageButton1", "fill").value<QColor>().name(), "#2a303a");
    ASSERT_TRUE(hand.click("messageButton1"));
    EXPECT_FALSE(hand.sees("messageTitle"));
    EXPECT_TRUE(program.app.trustStore.deviceWithID(device.id));

    ASSERT_TRUE(hand.click("myPhone0/more"));
    ASSERT_TRUE(hand.click("forget"));
    hand.key(Qt::Key_Return);
    EXPECT_FALSE(hand.sees("messageTitle"));
    EXPECT_TRUE(program.app.trustStore.deviceWithID(device.id)) << "Return alone forgets nothing";
    ASSERT_TRUE(hand.click("myPhone0/more"));
    ASSERT_TRUE(hand.click("forget"));
    ASSERT_TRUE(hand.click("messageButton0"));
    EXPECT_FALSE(program.app.trustStore.deviceWithID(device.id));
    EXPECT_FALSE(hand.sees("myPhone0"));
    EXPECT_TRUE(hand.sees("noTrusted"));
}

TEST(Message, forgetsTheConnectedIPhone) {
    FacedProgram program;
    auto& phone = program.addPhone("");
    program.bringTo(LinkPhase::connected, phone);
    Hand hand(program.window());
    ASSERT_TRUE(hand.click("myPhone0/more"));
    ASSERT_TRUE(hand.click("forget"));
    EXPECT_EQ(hand.text("messageTitle"), "Forget this iPhone?");
    ASSERT_TRUE(hand.click("messageButton0"));
    program.advance(1s);
    EXPECT_FALSE(phone.isConnected());
    EXPECT_TRUE(program.app.trustStore.devices->empty());
}

TEST(Message, offersToMoveTheProgram) {
    FacedProgram program;
    program.relocation.offerMoveIfNeeded();
    program.advance(1s);
    ASSERT_TRUE(program.face.hasVisibleWindows()) << "the offer opens the window";
    Hand hand(program.window());
    EXPECT_EQ(hand.text("messageTitle"), "Move Orbinex to Applications?");
    EXPECT_EQ(hand.text("messageButton0"), "Move to Applications");
    ASSERT_TRUE(hand.click("suppression"));
    ASSERT_TRUE(hand.click("messageButton1"));
    EXPECT_FALSE(hand.sees("messageTitle"));
    EXPECT_EQ(program.defaults.boolean(AppRelocationManager::suppressionKey), true);
    EXPECT_TRUE(program.bundle.calls.empty());
}

TEST(Message, tellsHowToMoveTheProgramByHandWhereItCannotMoveItself) {
    FacedProgram program;
    program.bundle.failing = {"copy"};
    program.relocation.offerMoveIfNeeded();
    program.advance(1s);
    Hand hand(program.window());
    ASSERT_TRUE(hand.click("messageButton0"));
    program.advance(1s);
    hand.settle();
    EXPECT_EQ(hand.text("messageTitle"), "Action Required: Drag to Applications");
    EXPECT_FALSE(hand.sees("suppression"));
    ASSERT_TRUE(hand.click("messageButton0"));
    EXPECT_FALSE(hand.sees("messageTitle"));
}

TEST(Message, asksAboutAPairingBeforeAnythingElse) {
    FacedProgram program;
    PublishInTest::set(program.app.centralManager.alert, {alert("Something")});
    std::vector<bool> answers;
    program.pairing.ask("Ada", "123 456", [&](bool isAccepted) { answers.push_back(isAccepted); });
    Hand hand(program.window());
    EXPECT_EQ(hand.text("messageTitle"), "Pair with Ada?");
    EXPECT_TRUE(hand.text("messageText").contains("123 456"));
    ASSERT_TRUE(hand.click("messageButton0"));
    EXPECT_EQ(answers, std::vector{true});
    EXPECT_EQ(hand.text("messageTitle"), "Something");

    program.pairing.ask("Ada", std::nullopt, [&](bool isAccepted) { answers.push_back(isAccepted); });
    hand.settle();
    hand.key(Qt::Key_Return);
    EXPECT_EQ(answers, (std::vector{true, false})) << "what is typed elsewhere must not pair by chance";
    program.pairing.ask("Ada", std::nullopt, [&](bool) { answers.push_back(true); });
    program.pairing.withdraw();
    hand.settle();
    EXPECT_EQ(hand.text("messageTitle"), "Something");
    EXPECT_EQ(answers.size(), 2u);
}

TEST(TwoPrompts, takeTheFirstAnswerOnly) {
    PairingQuestion left;
    PairingQuestion right;
    TwoPrompts both(left, right);
    std::vector<bool> answers;
    const auto note = [&](bool isAccepted) { answers.push_back(isAccepted); };
    both.ask("Ada", std::nullopt, note);
    const int rightSerial = right.question.get()->serial;
    left.answer(left.question.get()->serial, true);
    EXPECT_EQ(*right.question, std::nullopt);
    right.answer(rightSerial, false);
    EXPECT_EQ(answers, std::vector{true});
    both.ask("Ada", std::nullopt, note);
    both.withdraw();
    EXPECT_EQ(*left.question, std::nullopt);
    EXPECT_EQ(*right.question, std::nullopt);
    EXPECT_EQ(answers.size(), 1u);
}

}  // namespace
}  // namespace orbinex::test
