#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "base/lifetime.h"
#include "base/published.h"
#include "base/signal.h"
#include "support/publish_in_test.h"

using namespace orbinex;
using testing::ElementsAre;

namespace {

using Calls = std::vector<std::string>;

TEST(Signal, tellsItsObserversInOrderWhileTheirSubscriptionsLive) {
    Signal<int> signal;
    Calls calls;
    Subscription first =
        signal.subscribe([&](int value) { calls.push_back("first " + std::to_string(value)); });
    {
        const Subscription second = signal.subscribe([&](int) { calls.emplace_back("second"); });
        signal.emit(1);
    }
    signal.emit(2);
    Subscription moved = std::move(first);
    signal.emit(3);
    moved = Subscription();
    signal.emit(4);
    EXPECT_THAT(calls, ElementsAre("first 1", "second", "first 2", "first 3"));
}

TEST(Signal, doesNotCallWhomAnEarlierObserverUnsubscribed) {
    Signal<> signal;
    Calls calls;
    Subscription second;
    Subscription itself;
    const Subscription first = signal.subscribe([&] {
        calls.emplace_back("first");
        second.cancel();
    });
    itself = signal.subscribe([&] {
        calls.emplace_back("itself");
        itself.cancel();
    });
    second = signal.subscribe([&] { calls.emplace_back("second"); });
    signal.emit();
    signal.emit();
    EXPECT_THAT(calls, ElementsAre("first", "itself", "first"));
}

TEST(Signal, callsANewObserverOnlyFromTheNextEmissionOn) {
    Signal<> signal;
    Calls calls;
    std::vector<Subscription> added;
    const Subscription first = signal.subscribe([&] {
        // Many, so that the list must grow while it is walked.
        for (int i = 0; added.size() < 100; ++i)
            added.push_back(signal.subscribe([&] { calls.emplace_back("new"); }));
    });
    signal.emit();
    EXPECT_TRUE(calls.empty());
    signal.emit();
    EXPECT_EQ(calls.size(), 100U);
}

TEST(Signal, mayBeEmittedFromWithinItsOwnObserver) {
    Signal<int> signal;
    Calls calls;
    Subscription second;
    const Subscription first = signal.subscribe([&](int depth) {
        calls.push_back("first " + std::to_string(depth));
        if (depth < 2)
            signal.emit(depth + 1);
        else
            second.cancel();
    });
    second = signal.subscribe([&](int depth) { calls.push_back("second " + std::to_string(depth)); });
    signal.emit(0);
    EXPECT_THAT(calls, ElementsAre("first 0", "first 1", "first 2"));
}

TEST(Signal, mayBeDestroyedByItsOwnObserver) {
    auto signal = std::make_unique<Signal<>>();
    Calls calls;
    const Subscription first = signal->subscribe([&] {
        calls.emplace_back("first");
        signal.reset();
    });
    const Subscription second = signal->subscribe([&] { calls.emplace_back("second"); });
    signal->emit();
    EXPECT_EQ(signal, nullptr);
    EXPECT_EQ(calls.front(), "first");
}

TEST(Signal, letsAnObserverOwnTheSubscriptionsOfOthers) {
    Signal<> signal;
    int calls = 0;
    // Each dropped observer drops the next one, while the list is being tidied up.
    Subscription owner;
    for (int i = 0; i < 5; ++i) {
        auto owned = std::make_shared<Subscription>(std::move(owner));
        owner = signal.subscribe([owned, &calls] { ++calls; });
    }
    const Subscription last = signal.subscribe([&] { owner.cancel(); });
    const Subscription witness = signal.subscribe([&] { calls += 100; });
    signal.emit();
    EXPECT_EQ(calls, 105);
    signal.emit();
    EXPECT_EQ(calls, 205);
}

TEST(Subscription, outlivesItsSignalWithoutHarm) {
    std::optional<Signal<>> signal(std::in_place);
    Subscription subscription = signal->subscribe([] {});
    signal.reset();
    subscription.cancel();
    subscription.cancel();
}

TEST(Published, tellsOfAChangeBeforeAndAfterIt) {
    Published<int, PublishInTest> value(1);
    Calls calls;
    const Subscription will = value.onWillChange([&](int next) {
        calls.push_back("will " + std::to_string(value.get()) + " " + std::to_string(next));
    });
    const Subscription did = value.onDidChange([&](int next) {
        calls.push_back("did " + std::to_string(value.get()) + " " + std::to_string(next));
    });
    PublishInTest::set(value, 2);
    PublishInTest::set(value, 2);
    EXPECT_THAT(calls, ElementsAre("will 1 2", "did 2 2", "will 2 2", "did 2 2"));
}

TEST(Published, tellsTheLaterObserversOfEachOfTwoNestedAssignments) {
    Published<int, PublishInTest> value(0);
    Calls calls;
    const Subscription first = value.onDidChange([&](int next) {
        if (next == 1) PublishInTest::set(value, 2);
    });
    const Subscription second = value.onDidChange([&](int next) { calls.push_back(std::to_string(next)); });
    PublishInTest::set(value, 1);
    EXPECT_EQ(*value, 2);
    EXPECT_THAT(calls, ElementsAre("2", "1"));
}

TEST(Published, isEditedInPlaceOrAnnouncedBefore) {
    Published<std::string, PublishInTest> text{"a"};
    std::vector<std::string> seen;
    const auto after = text.onDidChange([&](const std::string& value) { seen.push_back(value); });
    const auto* const place = &*text;
    PublishInTest::edit(text, [](std::string& value) { value += "b"; });
    EXPECT_EQ(&*text, place);
    const auto before =
        text.onWillChange([&](const std::string& value) { seen.push_back(*text + " to " + value); });
    PublishInTest::edit(text, [](std::string& value) { value += "c"; });
    EXPECT_EQ(seen, (std::vector<std::string>{"ab", "ab to abc", "abc"}));
}

TEST(Lifetime, silencesItsWorkWhenItEnds) {
    int calls = 0;
    std::function<void(int)> work;
    {
        const Lifetime lifetime;
        work = lifetime.guard([&](int step) { calls += step; });
        work(1);
    }
    work(10);
    EXPECT_EQ(calls, 1);
}

TEST(Lifetime, mayEndInsideItsOwnWork) {
    auto lifetime = std::make_unique<Lifetime>();
    Calls calls;
    const auto work = std::make_shared<std::function<void()>>();
    *work = lifetime->guard([&calls, &lifetime] {
        lifetime.reset();
        calls.emplace_back("went on");
    });
    (*work)();
    (*work)();
    EXPECT_THAT(calls, ElementsAre("went on"));
}

}  // namespace
