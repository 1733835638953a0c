// What holds for everything that is seen, at the scale that QT_SCALE_FACTOR sets.

#include <QAccessible>
#include <QSet>

#include <gtest/gtest.h>

#include "pictures/faced_program.h"

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
    program.addPhone("Ада", -80);
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

/// Complaints about the texts of a window, and how many there are.
int checkTexts(QQuickWindow& window) {
    std::vector<QQuickItem*> texts;
    for (QQuickItem* item : visibleItems(window.contentItem()))
        if (isText(*item)) texts.push_back(item);
    for (const QQuickItem* text : texts) {
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
        Hand(program.window()).settle();
        checkTexts(program.window());
        Hand(program.panel()).settle();
        checkTexts(program.panel());
    }
}

bool isControl(const QQuickItem& item) {
    return item.inherits("QQuickAbstractButton");
}

TEST(Layout, namesEverythingThatActsOrInforms) {
    QAccessible::setActive(true);
    FacedProgram program({}, false);
    crowd(program);
    program.app.centralManager.alert = BLEAlert{UUID::random(), "Title", "Message"};
    int controls = 0;
    for (QQuickWindow* window : {&program.window(), &program.panel()}) {
        Hand(*window).settle();
        for (QQuickItem* item : visibleItems(window->contentItem())) {
            const bool isMessage = item->objectName() == "signal" || isText(*item);
            if (!isControl(*item) && item->objectName() != "signal") continue;
            ++controls;
            QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(item);
            ASSERT_TRUE(face) << item->objectName().toStdString();
            EXPECT_FALSE(face->text(QAccessible::Name).isEmpty())
                << item->objectName().toStdString() << isMessage;
        }
    }
    EXPECT_GT(controls, 20);
    Hand hand(program.window());
    const auto name = [&](const char* path) {
        QQuickItem* const item = findItem(program.window().contentItem(), path);
        QAccessibleInterface* const face = item ? QAccessible::queryAccessibleInterface(item) : nullptr;
        return face ? face->text(QAccessible::Name).toStdString() : std::string();
    };
    EXPECT_EQ(name("nearbyPhone0/signal"), "Signal 3 of 3");
    EXPECT_EQ(name("nearbyPhone1/signal"), "Signal 1 of 3");
    EXPECT_EQ(name("myPhone1/more"), "More options for " + longName);
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
