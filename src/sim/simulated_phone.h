#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/uuid.h"
#include "link/bluetooth_central.h"
#include "protocol/control_message.h"
#include "protocol/daw_command.h"
#include "protocol/device_info.h"
#include "protocol/input_packet.h"

namespace orbinex {

class SimulatedRadio;

/// How a simulated phone answers one step of a connection.
struct PhoneStep {
    std::chrono::nanoseconds delay = std::chrono::milliseconds(20);
    /// The step fails with this.
    std::optional<BluetoothError> error;
    /// False: the step is never answered.
    bool isAnswered = true;
};

/// An iPhone on the simulated radio. Everything that it is and does may be changed at any time; the change
/// holds from the next step on. Its messages go through the same codec as the real phone's.
class SimulatedPhone {
  public:
    /// Advertises as "OX", the token of the device id, ":" and the name.
    SimulatedPhone(SimulatedRadio& radio, const UUID& identifier, DeviceInfo info);
    SimulatedPhone(const SimulatedPhone&) = delete;
    SimulatedPhone& operator=(const SimulatedPhone&) = delete;

    DeviceInfo info;
    std::string advertisedName;
    int rssi = -50;
    bool hasService = true;
    /// Characteristics that this phone's version of the service lacks.
    std::set<UUID> missingCharacteristics;
    /// Given instead of `info`, however malformed.
    std::optional<Bytes> infoValue;
    bool canWriteWithoutResponse = true;
    /// Connected to this computer by somebody else as well.
    bool isConnectedElsewhere = false;

    PhoneStep connectStep{std::chrono::milliseconds(80), std::nullopt, true};
    PhoneStep servicesStep;
    PhoneStep characteristicsStep;
    PhoneStep infoStep;
    PhoneStep subscribeStep;

    /// What the computer calls this phone at present.
    [[nodiscard]] const UUID& identifier() const { return identifier_; }
    [[nodiscard]] bool isAdvertising() const { return isAdvertising_; }
    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] bool isNotifying(const UUID& characteristic) const;

    void setAdvertising(bool advertising);
    /// Out of range or switched off: the link drops, and requests stay unanswered.
    void setInRange(bool inRange);
    [[nodiscard]] bool isInRange() const { return isInRange_; }
    /// The link ends from this side, with what the computer is told of the reason.
    void dropLink(const std::optional<BluetoothError>& reason = std::nullopt);
    /// The service vanishes from a standing link.
    void withdrawService();
    /// A new private address: the computer sees a peripheral that it does not know. A standing link stays.
    void changeAddress(const UUID& identifier);

    /// A notification, if the computer has subscribed to the characteristic; else nothing happens.
    void notify(const UUID& characteristic, ByteView value);
    /// A value that the computer has neither asked for nor subscribed to.
    void tell(const UUID& characteristic, ByteView value);
    void send(const DecodedPacket& packet);
    void send(const ControlMessage& message);
    void send(const DAWCommand& command) { send(ControlMessage{command}); }

    /// Everything the computer wrote on the control characteristic and that decodes, in order.
    std::vector<ControlMessage> received;
    std::function<void(const ControlMessage&)> onReceived;

  private:
    friend class SimulatedRadio;

    SimulatedRadio& radio_;
    UUID identifier_;
    bool isAdvertising_ = true;
    bool isInRange_ = true;
};

}  // namespace orbinex
