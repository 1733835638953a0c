// The phone comes near, is trusted and connects; later it goes out of range in the middle of a drag.

#include <QQuickWindow>
#include <algorithm>
#include <variant>

#include "hand/hand.h"
#include "stage.h"

namespace orbinex::demo {

namespace {

std::string phaseName(LinkPhase phase) {
    switch (phase) {
        case LinkPhase::bluetoothUnavailable: return "Bluetooth unavailable";
        case LinkPhase::searching: return "searching";
        case LinkPhase::connecting: return "connecting";
        case LinkPhase::securing: return "securing";
        case LinkPhase::connected: return "connected";
    }
    return "unknown";
}

std::string namesOf(const NearbyList& list) {
    std::string names;
    for (const auto& device : list) names += (names.empty() ? "" : ", ") + device.name;
    return names.empty() ? "none" : names;
}

/// The name in the last greeting that the phone has received.
std::string greeting(const SimulatedPhone& phone) {
    std::string name = "none";
    for (const auto& message : phone.received) {
        if (const auto* hello = std::get_if<ControlMessage::Hello>(&message.value)) name = hello->macName;
    }
    return name;
}

}  // namespace

void meetThePhone(Stage& stage) {
    stage.report.chapter("A phone nearby");
    auto& link = stage.program.link();
    auto& phone = stage.program.phone();
    stage.expect("the phone will advertise as", "OXA1B2C3:Studio iPhone",
                 [&] { return phone.advertisedName; });
    phone.setAdvertising(true);
    stage.expect("found, not trusted yet", "Studio iPhone",
                 [&] { return namesOf(link.untrustedNearbyDevices()); });
    stage.expect("link before anybody clicks Connect", "searching", [&] { return phaseName(*link.phase); });
    Scene& scene = *stage.program.face().scene();
    Hand hand(*scene.mainWindow());
    stage.expect("the main window offers it", "Studio iPhone",
                 [&] { return hand.text("nearbyPhone0/name").toStdString(); });
    hand.click("nearbyPhone0/trust");
    stage.expect("link after Trust & Connect", "connected", [&] { return phaseName(*link.phase); });
    stage.expect("trusted from now on", "Studio iPhone A1B2C3", [&] {
        const auto& devices = *stage.program.trustStore().devices;
        return devices.size() == 1 ? devices[0].name + " " + devices[0].token : std::string("nobody");
    });
    stage.expect("the phone was greeted by", Program::computerName, [&] { return greeting(phone); });
    stage.expect("the main window", "Connected to Studio iPhone",
                 [&] { return hand.text("connectionTitle").toStdString(); });
    scene.mainWindow()->close();
}

void loseTheLinkInADrag(Stage& stage) {
    stage.report.chapter("The link is lost in the middle of a drag");
    auto& link = stage.program.link();
    auto& phone = stage.program.phone();
    const auto buttons = [&] { return stage.screen.buttonsHeld(); };
    stage.pointAt(stage.grid.place(1, 10));
    stage.user.press();
    stage.pointAt(stage.grid.place(1, 19));
    stage.expect("button held while dragging", "left", buttons);
    stage.expect("selected so far", "brown fox", [&] { return stage.selections.selected(); });
    phone.setInRange(false);
    stage.expect("button held once the phone is out of range", "none", buttons);
    stage.expectThat("link", "is not connected", [&] { return *link.phase != LinkPhase::connected; });
    stage.user.tap(1);
    stage.expect("what the phone does now reaches nobody", "brown fox",
                 [&] { return stage.selections.selected(); });

    phone.setInRange(true);
    stage.expect("link, by itself, once the phone is back", "connected",
                 [&] { return phaseName(*link.phase); });
    stage.user.strike(Key::end, ModifierFlags::command);
    stage.user.type("\nBack again ✅");
    stage.letter += "\nBack again ✅";
    stage.expectLetter("goes on where it was");
}

}  // namespace orbinex::demo
