#include "vm/link_scenario.h"

#include <algorithm>
#include <array>
#include <regex>
#include <string_view>

namespace orbinex::test {

using namespace std::chrono_literals;

namespace {

/// Status lines and alerts, among the answers to commands.
bool isShownUnasked(const std::string& line) {
    static const std::regex pattern(
        "Starting Bluetooth…|Bluetooth is .*|This Mac doesn't .*|Orbinex (needs|isn't) .*|Waiting for a "
        "trusted iPhone…|"
        "Searching for iPhones .*|Looking for .*|Connecting to .*|Securing connection .*|Connected to .*|"
        "Reconnecting in .*|Disconnected from .*|Connection (cancelled|to .*)|.* (disconnected|paused "
        "Orbinex)|"
        ".* is waiting to be trusted|Secure handshake .*|(Service|Characteristic) discovery failed: .*|"
        "Update required|Couldn't read device info: .*|Invalid device info|Version mismatch|"
        "Subscription failed: .*|Pairing not completed|"
        ".* Isn't Nearby: .*|Couldn't (Reach|Connect to) .*|Connection Timed Out: .*|Update Required: .*|"
        "Pair .* Again: .*|Pairing Not Completed: .*");
    return std::regex_match(line, pattern);
}

}  // namespace

Process& LinkScenario::startFirstPhone(const std::vector<std::string>& options) {
    std::vector<std::string> all{"--name", phoneName};
    all.insert(all.end(), options.begin(), options.end());
    phone_ = &startPhone(phoneAdapter, all);
    EXPECT_TRUE(phone_->waitFor("ready", limit));
    return *phone_;
}

Process& LinkScenario::startSecondPhone() {
    Process& other = startPhone(secondPhoneAdapter, {"--name", otherName});
    EXPECT_TRUE(other.waitFor("ready", limit));
    return other;
}

void LinkScenario::searchForPhone() {
    startFirstPhone();
    startProgram();
    EXPECT_TRUE(shows("Searching for iPhones running Orbinex…"));
}

void LinkScenario::connect(const std::string& name) {
    const auto isListed = [&] {
        program().send("list");
        return static_cast<bool>(program().waitFor(name, 2s));
    };
    ASSERT_TRUE(waitUntil(isListed, limit)) << name << " is not seen";
    program().send("connect " + name);
}

void LinkScenario::pair(const std::string& answer, const std::string& name) {
    ASSERT_NO_FATAL_FAILURE(connect(name));
    ASSERT_TRUE(program().waitFor(std::regex("Pair with \"" + name + ".*[0-9]{6}"), limit));
    program().send(answer);
}

void LinkScenario::meet() {
    searchForPhone();
    ASSERT_NO_FATAL_FAILURE(pair("yes"));
    ASSERT_TRUE(becomesConnected());
}

testing::AssertionResult LinkScenario::becomesConnected(const std::string& name) {
    auto result = shows("Connected to " + name);
    if (!result) return result;
    // Others come and go for a moment, as the bridge to the editor looks for one.
    const auto count = [this] { return program().openDescriptors(); };
    if (descriptors_.first != program().pid()) {
        descriptors_ = {program().pid(), count()};
        const auto hasMore = [&] { return count() > descriptors_.second; };
        while (waitUntil(hasMore, 500ms)) descriptors_.second = std::max(count(), descriptors_.second);
    } else {
        const auto hasNoMore = [&] { return count() <= descriptors_.second; };
        EXPECT_TRUE(waitUntil(hasNoMore, limit)) << "descriptors are left open: " << count();
    }
    return result;
}

testing::AssertionResult LinkScenario::shows(const std::string& line) {
    return program().waitFor(line, limit);
}

testing::AssertionResult LinkScenario::isLeft(Process& phone) {
    // What it prints of meters has the word too.
    static const std::regex pattern("^disconnected ");
    return phone.waitFor(pattern, limit);
}

testing::AssertionResult LinkScenario::pointerFollows(Process& phone) {
    XClient& client = desktop().client();
    client.handleEvents();
    const auto before = client.pointer();
    phone.send("move 7 5");
    const auto hasMoved = [&] { return client.pointer() != before; };
    if (waitUntil(hasMoved, limit)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the pointer does not move";
}

void LinkScenario::expectShown(const std::vector<std::string>& expected) {
    const auto& lines = program().lines();
    std::vector<std::string> shown;
    for (; seen_ < lines.size(); ++seen_) {
        const auto& line = lines[seen_];
        if (isShownUnasked(line) && (shown.empty() || shown.back() != line)) shown.push_back(line);
    }
    EXPECT_TRUE(isTranscript(shown, expected));
}

}  // namespace orbinex::test
