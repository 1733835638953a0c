#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "link/central_ble_manager.h"
#include "sim/memory_defaults.h"
#include "sim/recording_bridge.h"
#include "sim/simulated_radio.h"
#include "sim/virtual_main_queue.h"

namespace orbinex {

inline const BluetoothError radioError{BluetoothError::Kind::other, 0, "The radio is busy."};

/// A link with everything around it, in virtual time. What a person would have seen is kept in order.
class LinkWorld {
  public:
    static constexpr UUID deviceID = UUID::literal("A1B2C3D4-0000-4000-8000-000000000001");
    static constexpr UUID otherDeviceID = UUID::literal("B0B0B0D4-0000-4000-8000-000000000002");
    static constexpr UUID address = UUID::literal("00000000-0000-4000-8000-0000000000AA");
    static constexpr UUID otherAddress = UUID::literal("00000000-0000-4000-8000-0000000000BB");
    static constexpr UUID newAddress = UUID::literal("00000000-0000-4000-8000-0000000000CC");

    explicit LinkWorld(BluetoothState state = BluetoothState::poweredOn)
        : radio(queue, state), link(store, {queue, radio, wake, bridge, [this] { return computerName; }}) {
        lines.push_back(*link.statusMessage);
        observers.push_back(
            link.statusMessage.onDidChange([this](const auto& line) { lines.push_back(line); }));
        observers.push_back(link.alert.onDidChange([this](const auto& alert) {
            if (alert) alerts.push_back(*alert);
        }));
        link.onInputPacket = [this](const DecodedPacket& packet) { packets.push_back(packet); };
        link.onConnectionLost = [this] { ++connectionsLost; };
        queue.runDue();
    }

    SimulatedPhone& addPhone(const std::string& name = "Studio iPhone", const UUID& device = deviceID,
                             const UUID& identifier = address) {
        return radio.addPhone(identifier, DeviceInfo{2, device, name});
    }

    /// A record of a phone that was trusted in an earlier run.
    TrustedDevice trustEarlier(const SimulatedPhone& phone) {
        const TrustedDevice record{phone.info.deviceID, phone.info.name, deviceToken(phone.info.deviceID),
                                   phone.identifier(),  queue.now(),     std::nullopt};
        store.trust(record);
        return record;
    }

    void run(std::chrono::nanoseconds span) { queue.advance(span); }

    /// Lets a phone be heard, and connects it as a person would.
    void connectByUser(const SimulatedPhone& phone) {
        run(std::chrono::milliseconds(1100));
        link.connectNearbyDevice(phone.identifier());
    }
    /// The whole way to the connected state.
    void establish(const SimulatedPhone& phone) {
        connectByUser(phone);
        run(std::chrono::seconds(1));
    }

    [[nodiscard]] bool sawLine(const std::string& line) const {
        return std::ranges::find(lines, line) != lines.end();
    }
    void forgetWhatWasSeen() {
        lines.clear();
        alerts.clear();
        packets.clear();
    }

    VirtualMainQueue queue;
    MemoryDefaults defaults;
    TrustedDeviceStore store{defaults, "trustedDevices.v1"};
    SimulatedRadio radio;
    WakeNotifier wake;
    RecordingBridge bridge;
    std::string computerName = "Edit Suite";
    CentralBLEManager link;

    std::vector<std::string> lines;
    std::vector<BLEAlert> alerts;
    std::vector<DecodedPacket> packets;
    int connectionsLost = 0;
    std::vector<Subscription> observers;
};

}  // namespace orbinex
