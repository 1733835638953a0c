#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "link_world.h"

namespace orbinex {

/// What an alert says.
struct ShownAlert {
    std::string title;
    std::string message;
    friend bool operator==(const ShownAlert&, const ShownAlert&) = default;
    friend std::ostream& operator<<(std::ostream& out, const ShownAlert& alert) {
        return out << alert.title << ": " << alert.message;
    }
};

/// What happens on the air or by the user's hand.
using TextEvent = std::function<void(LinkWorld&, SimulatedPhone&)>;

/// An event, and what the person reads of it.
struct TextRow {
    const char* event;
    /// The phone is trusted from an earlier run: it is connected by itself.
    bool isTrusted;
    TextEvent happens;
    /// Must be seen, in this order, not necessarily in direct succession.
    std::vector<std::string> lines;
    /// The line that stays.
    std::string last;
    std::vector<ShownAlert> alerts;
};

/// Each row in a world of its own.
inline void expectTexts(const std::vector<TextRow>& rows) {
    for (const auto& row : rows) {
        SCOPED_TRACE(row.event);
        LinkWorld world(row.isTrusted ? BluetoothState::unknown : BluetoothState::poweredOn);
        auto& phone = world.addPhone();
        if (row.isTrusted) {
            // A background request waits at the moment Bluetooth comes up.
            world.trustEarlier(phone);
            phone.connectStep.delay = std::chrono::milliseconds(200);
            world.radio.setState(BluetoothState::poweredOn);
        }
        row.happens(world, phone);

        auto seen = world.lines.begin();
        for (const auto& line : row.lines) {
            seen = std::find(seen, world.lines.end(), line);
            ASSERT_NE(seen, world.lines.end()) << line << "\n" << testing::PrintToString(world.lines);
            ++seen;
        }
        EXPECT_EQ(*world.link.statusMessage, row.last) << testing::PrintToString(world.lines);
        std::vector<ShownAlert> shown;
        for (const auto& alert : world.alerts) shown.push_back({alert.title, alert.message});
        EXPECT_EQ(shown, row.alerts);
    }
}

// Lines that many events lead to.
inline const std::string securing = "Securing connection with Studio iPhone…";
inline const std::string searching = "Searching for iPhones running Orbinex…";
inline const std::string waiting = "Waiting for a trusted iPhone…";
inline const std::string retrying = "Reconnecting in 1s…";

inline void userConnects(LinkWorld& world, const SimulatedPhone& phone) {
    world.connectByUser(phone);
    world.run(std::chrono::milliseconds(600));
}
inline TextEvent userConnectsAfter(std::function<void(SimulatedPhone&)> set) {
    return [set](LinkWorld& world, SimulatedPhone& phone) {
        set(phone);
        userConnects(world, phone);
    };
}
inline TextEvent connectsByItselfAfter(std::function<void(SimulatedPhone&)> set) {
    return [set](LinkWorld& world, SimulatedPhone& phone) {
        set(phone);
        world.run(std::chrono::milliseconds(600));
    };
}

}  // namespace orbinex
