#include "hand_orders.h"

#include "hand/hand.h"
#include "test_phone/words.h"

namespace orbinex::demo {

std::string carryOut(std::string_view order, QQuickWindow& window) {
    constexpr std::int64_t farthest = 10'000;
    test_phone::Words words(order);
    const auto act = words.word();
    const auto item = QString::fromStdString(std::string(words.word()));
    Hand hand(window);
    if (act == "look") return hand.sees(item) ? "shows " + hand.text(item).toStdString() : "missing";
    bool isDone = false;
    if (act == "click") {
        isDone = hand.click(item);
    } else if (act == "drag") {
        const auto x = words.integer(-farthest, farthest);
        const auto y = words.integer(-farthest, farthest);
        isDone = x && y && hand.drag(item, {static_cast<int>(*x), static_cast<int>(*y)});
    } else if (act == "wheel") {
        const auto angle = words.integer(-farthest, farthest);
        isDone = angle && hand.turnWheel(item, {0, static_cast<int>(*angle)});
    } else if (act == "type") {
        isDone = hand.click(item);
        if (isDone)
            hand.type(QString::fromUtf8(words.rest().data(), static_cast<qsizetype>(words.rest().size())));
    }
    return isDone ? "done" : "missing";
}

}  // namespace orbinex::demo
