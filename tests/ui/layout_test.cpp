// What holds for everything that is seen, at the scale that QT_SCALE_FACTOR sets.

#include <QAccessible>
#include <QSet>
#include <algorithm>

#include <gtest/gtest.h>

#include "pictures/faced_program.h"
#include "support/publish_in_test.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;

const std::string longName = "The Extraordinarily Long iPhone of Ada L.";

/// Everything at once: long names, every card, every optional line.
void crowd(FacedProgram& program) {
    ASSERT_GE(longName.size(), 40u);
    program.trust(longName, 5 * 3'600s);
    program.trust("Kitchen iPhone");
    program.addPhone(longName, -58);
    program.addPhone("يسرى <b>x</b> 📱", -80);
    program.shell.loginItem.present = LoginItemStatus::requiresApproval;
    program.shell.loginItem.failure = "The folder of what starts at login cannot be written.";
    program.app.loginItemManager.setEnabled(true);
    program.advance(2s);
}

bool isText(const QQuickItem& item) {
    return item.inherits("QQuickText") && !item.property("text").toString().isEmpty();
}

std::string words(const QQuickItem& item) {
    return item.property("text").toString().toStdString();
}

QRectF inWindow(const QQuickItem& item) {
    return item.mapRectToScene({0, 0, item.property("contentWidth").toReal(), item.height()});
}

/// Complaints about the texts of a window, or of a part of it, and how many there are.
int checkTexts(QQuickWindow& window, QQuickItem* part = nullptr) {
    std::vector<QQuickItem*> texts;
    for (QQuickItem* item : visibleItems(part ? part : window.contentItem()))
        if (isText(*item)) texts.push_back(item);
    for (const QQuickItem* text : texts) {
        EXPECT_EQ(text->property("textFormat").toInt(), Qt::PlainText) << words(*text);
        EXPECT_EQ(text->property("effectiveHorizontalAlignment").toInt(), Qt::AlignLeft) << words(*text);
        EXPECT_FALSE(text->property("truncated").toBool()) << words(*text);
        EXPECT_LE(text->property("contentHeight").toReal(), text->height() + 0.5) << words(*text);
        EXPECT_LE(text->property("contentWidth").toReal(), text->width() + 0.5) << words(*text);
        EXPECT_GE(inWindow(*text).left(), 0) << words(*text);
        EXPECT_LE(inWindow(*text).right(), window.width()) << words(*text);
        for (const QQuickItem* other : texts) {
            if (other >= text) continue;
            const QRectF overlap = inWindow(*text) & inWindow(*other);
            EXPECT_FALSE(overlap.width() > 0.5 && overlap.height() > 0.5)
                << words(*text) << " over " << words(*other);
        }
    }
    return static_cast<int>(texts.size());
}

TEST(Layout, clipsAndOverlapsNoTextAtAnyWidth) {
    FacedProgram program({}, false);
    crowd(program);
    QQuickWindow& window = program.window();
    for (const int width : {440, 560, 640, 720, 860, 1'400}) {
        window.resize(width, 720);
        Hand(window).settle();
        SCOPED_TRACE(width);
        EXPECT_GT(checkTexts(window), 40);
    }
    Hand(program.panel()).settle();
    EXPECT_GT(checkTexts(program.panel()), 10);
}

TEST(Layout, clipsAndOverlapsNoTextInAnyPhase) {
    for (const auto phase : {LinkPhase::connecting, LinkPhase::securing, LinkPhase::connected}) {
        FacedProgram program;
        program.bringTo(phase, program.addPhone(longName));
        QQuickWindow& window = program.window();
        for (const int width : {440, 860}) {
            window.resize(width, 720);
            Hand(window).settle();
            checkTexts(window);
        }
        Hand panel(program.panel());
        checkTexts(program.panel());
        const QQuickItem* const last = findItem(program.panel().contentItem(), "quitOrbinex");
        ASSERT_TRUE(last);
        EXPECT_EQ(program.panel().height() - last->mapToScene({0, last->height()}).y(), 16)
            << "it ends below its last line";
    }
}

TEST(Layout, clipsAndOverlapsNoTextOfAMessageAndKeepsItsButtonsInTheWindow) {
    std::string text;
    for (const int sentences : {1, 8, 80}) {
        while (std::ranges::count(text, '.') < sentences)
            text += "Something has to be done about all of this. ";
        FacedProgram program;
        QQuickWindow& window = program.window();
        window.resize(440, 400);
        PublishInTest::set(program.app.centralManager.alert,
                           {BLEAlert{UUID::random(), longName + " " + longName, text}});
        Hand hand(window);
        QQuickItem* const message = findItem(window.contentItem(), "message");
        ASSERT_TRUE(message);
        const QRectF inside(20, 20, window.width() - 40, window.height() - 40);
        EXPECT_TRUE(inside.contains(message->mapRectToScene(message->boundingRect()))) << sentences;
        const auto sheet = [&](const char* name) { return hand.property("messageSheet", name).toReal(); };
        const bool isScrolled = sheet("contentHeight") > sheet("height");
        EXPECT_EQ(isScrolled, sentences == 80);
        if (!isScrolled) checkTexts(window, message);
        hand.key(Qt::Key_End);
        EXPECT_EQ(sheet("contentY"), isScrolled ? sheet("contentHeight") - sheet("height") : 0);
        ASSERT_TRUE(hand.click("messageButton0"));
        EXPECT_FALSE(hand.sees("messageTitle"));
    }
}

bool isControl(const QQuickItem& item) {
    return item.inherits("QQuickAbstractButton");
}

TEST(Layout, namesEverythingThatActsOrInforms) {
    QAccessible::setActive(true);
    FacedProgram program({}, false);
    crowd(program);
    PublishInTest::set(program.app.centralManager.alert, {BLEAlert{UUID::random(), "Title", "Message"}});
    int controls = 0;
    for (QQuickWindow* window : {&program.window(), &program.panel()}) {
        Hand(*window).settle();
        for (QQuickItem* item : visibleItems(window->contentItem())) {
            if (!isControl(*item)) continue;
            ++controls;
            QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(item);
            ASSERT_TRUE(face) << item->objectName().toStdString();
            EXPECT_FALSE(face->text(QAccessible::Name).isEmpty()) << item->objectName().toStdString();
        }
    }
    EXPECT_GT(controls, 20);
    struct Row {
        const char* path;
        QAccessible::Role role;
        std::string name;
    };
    // Newer toolkits tell a button with a menu from others.
    QQuickItem* const more = findItem(program.window().contentItem(), "myPhone1/more");
    QAccessibleInterface* const moreFace = more ? QAccessible::queryAccessibleInterface(more) : nullptr;
    ASSERT_TRUE(moreFace);
    const auto moreRole =
        moreFace->role() == QAccessible::ButtonMenu ? QAccessible::ButtonMenu : QAccessible::Button;
    const Row rows[] = {
        {"wordmark", QAccessible::Heading, "ORBINEX"},
        {"connectionTitle", QAccessible::Heading, "Waiting for your iPhone"},
        {"phaseWord", QAccessible::StaticText, "Searching"},
        {"nearbyPhone0/signal", QAccessible::Indicator, "Signal 3 of 3"},
        {"nearbyPhone1/signal", QAccessible::Indicator, "Signal 1 of 3"},
        {"nearbyPhone1/name", QAccessible::StaticText, "يسرى <b>x</b> 📱"},
        {"nearbyPhone1/trust", QAccessible::Button, "Trust & Connect"},
        {"myPhone1/more", moreRole, "More options for " + longName},
        {"openAtLogin/switch", QAccessible::CheckBox, "Open at Login"},
        {"message/messageText", QAccessible::StaticText, "Message"},
    };
    for (const auto& row : rows) {
        QQuickItem* const item = findItem(program.window().contentItem(), row.path);
        QAccessibleInterface* const face = item ? QAccessible::queryAccessibleInterface(item) : nullptr;
        ASSERT_TRUE(face) << row.path;
        EXPECT_EQ(face->role(), row.role) << row.path;
        EXPECT_EQ(face->text(QAccessible::Name).toStdString(), row.name) << row.path;
    }
    QAccessible::setActive(false);
}

TEST(Layout, isReachedByTheKeyboardThroughoutAndShowsWhere) {
    FacedProgram program({}, false);
    crowd(program);
    QQuickWindow& window = program.window();
    Hand hand(window);
    QSet<QQuickItem*> wanted;
    for (QQuickItem* item : visibleItems(window.contentItem()))
        if (isControl(*item) && !item->inherits("QQuickMenuItem")) wanted.insert(item);
    ASSERT_GT(wanted.size(), 15);
    const auto steps = 2 * wanted.size();
    for (auto step = 0; step < steps && !wanted.isEmpty(); ++step) {
        hand.key(Qt::Key_Tab);
        QQuickItem* const focused = window.activeFocusItem();
        ASSERT_TRUE(focused);
        if (!wanted.remove(focused)) continue;
        EXPECT_TRUE(focused->property("visualFocus").toBool());
        const QRectF place = focused->mapRectToScene(focused->boundingRect());
        EXPECT_TRUE(QRectF(0, 0, window.width(), window.height()).contains(place))
            << focused->objectName().toStdString() << " is out of view";
    }
    for (const QQuickItem* missed : wanted)
        ADD_FAILURE() << missed->objectName().toStdString() << " is not reached";
}

}  // namespace
}  // namespace orbinex::test
