#include "app/accessibility_permission_manager.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/system_settings_urls.h"
#include "sim/recording_url_opener.h"
#include "sim/simulated_input_permission.h"
#include "sim/virtual_main_queue.h"

namespace orbinex {
namespace {

using namespace std::chrono_literals;

struct PermissionDesktop {
    explicit PermissionDesktop(bool granted) : permission(granted) {}

    VirtualMainQueue queue;
    SimulatedInputPermission permission;
    RecordingUrlOpener urls;
    ActivationNotifier activation;
    std::unique_ptr<AccessibilityPermissionManager> manager =
        std::make_unique<AccessibilityPermissionManager>(queue, permission, urls, activation);
};

TEST(AccessibilityPermissionManager, looksAtTheStartAndWhenThePersonComesBack) {
    PermissionDesktop desktop(false);
    EXPECT_FALSE(*desktop.manager->isAccessibilityGranted);
    EXPECT_EQ(*desktop.manager->explanation, desktop.permission.missing);
    EXPECT_EQ(desktop.queue.pendingTimers(), 0U);

    int announced = 0;
    const auto observer = desktop.manager->isAccessibilityGranted.onDidChange([&](bool) { ++announced; });
    desktop.activation.didBecomeActive.emit();
    EXPECT_EQ(announced, 0) << "an unchanged answer is not told again";
    desktop.permission.setGranted(true);
    desktop.activation.didBecomeActive.emit();
    EXPECT_TRUE(*desktop.manager->isAccessibilityGranted);
    EXPECT_EQ(*desktop.manager->explanation, "");
    desktop.permission.setGranted(false);
    desktop.activation.didBecomeActive.emit();
    EXPECT_FALSE(*desktop.manager->isAccessibilityGranted);
    EXPECT_EQ(announced, 2);
    EXPECT_TRUE(PermissionDesktop(true).manager->isAccessibilityGranted.get());
}

TEST(AccessibilityPermissionManager, pollsAfterARequestUntilItIsGranted) {
    PermissionDesktop desktop(false);
    desktop.manager->requestAccess();
    EXPECT_EQ(desktop.permission.requests, 1);
    ASSERT_TRUE(desktop.manager->isPolling());
    desktop.queue.advance(3s);
    desktop.permission.setGranted(true);
    desktop.queue.advance(999ms);
    EXPECT_FALSE(*desktop.manager->isAccessibilityGranted);
    desktop.queue.advance(1ms);
    EXPECT_TRUE(*desktop.manager->isAccessibilityGranted);
    EXPECT_EQ(desktop.queue.pendingTimers(), 0U);
}

TEST(AccessibilityPermissionManager, pollsForFiveMinutesAfterTheLastCall) {
    PermissionDesktop desktop(false);
    desktop.urls.isWorking = false;
    desktop.manager->openAccessibilitySettings();
    EXPECT_EQ(desktop.urls.opened, std::vector<std::string>{std::string(accessibilitySettingsUrl)});
    desktop.queue.advance(250s);
    desktop.manager->openAccessibilitySettings();
    EXPECT_EQ(desktop.queue.pendingTimers(), 1U);
    desktop.permission.checks = 0;
    desktop.queue.advance(300s);
    EXPECT_EQ(desktop.permission.checks, 150);
    EXPECT_TRUE(desktop.manager->isPolling());
    // The first look after the limit is the last.
    desktop.queue.advance(1h);
    EXPECT_EQ(desktop.permission.checks, 151);
    EXPECT_EQ(desktop.queue.pendingTimers(), 0U);
}

TEST(AccessibilityPermissionManager, doesNotPollForWhatIsGrantedAtOnce) {
    for (const bool isGrantedBefore : {false, true}) {
        PermissionDesktop desktop(isGrantedBefore);
        desktop.permission.isGrantedOnRequest = true;
        std::vector<bool> announced;
        const auto observer = desktop.manager->isAccessibilityGranted.onDidChange(
            [&](bool granted) { announced.push_back(granted); });
        if (!isGrantedBefore) desktop.manager->openAccessibilitySettings();
        desktop.manager->requestAccess();
        EXPECT_EQ(announced, std::vector{true});
        EXPECT_EQ(desktop.queue.pendingTimers(), 0U);
    }
}

TEST(AccessibilityPermissionManager, takesItsTimerAndObserverWithIt) {
    PermissionDesktop desktop(false);
    desktop.manager->requestAccess();
    desktop.manager.reset();
    EXPECT_EQ(desktop.queue.pendingTimers(), 0U);
    EXPECT_FALSE(desktop.activation.didBecomeActive.hasObservers());
}

TEST(SystemSettingsUrls, leadToWhatKeepsBluetoothOff) {
    EXPECT_EQ(bluetoothSettingsUrlFor(BluetoothState::unauthorized), bluetoothPrivacySettingsUrl);
    for (const auto state :
         {BluetoothState::poweredOff, BluetoothState::unsupported, BluetoothState::unknown})
        EXPECT_EQ(bluetoothSettingsUrlFor(state), bluetoothSettingsUrl);
}

}  // namespace
}  // namespace orbinex
