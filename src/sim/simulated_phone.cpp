#include "sim/simulated_phone.h"

#include <array>
#include <utility>

#include "protocol/gatt.h"
#include "sim/simulated_radio.h"

namespace orbinex {

SimulatedPhone::SimulatedPhone(SimulatedRadio& radio, const UUID& identifier, DeviceInfo deviceInfo)
    : info(std::move(deviceInfo)),
      advertisedName("OX" + deviceToken(info.deviceID) + ":" + info.name),
      radio_(radio),
      identifier_(identifier) {}

bool SimulatedPhone::isConnected() const {
    return radio_.isConnected(identifier_);
}

bool SimulatedPhone::isNotifying(const UUID& characteristic) const {
    const auto link = radio_.links_.find(identifier_);
    return isConnected() && link->second.notifying.contains(characteristic);
}

void SimulatedPhone::setAdvertising(bool advertising) {
    isAdvertising_ = advertising;
    radio_.reconsider(*this);
}

void SimulatedPhone::setInRange(bool inRange) {
    isInRange_ = inRange;
    if (!inRange) dropLink(BluetoothError{.description = "The connection has timed out unexpectedly."});
    radio_.reconsider(*this);
}

void SimulatedPhone::dropLink(const std::optional<BluetoothError>& reason) {
    if (isConnected()) radio_.endLink(identifier_, reason);
}

void SimulatedPhone::withdrawService() {
    hasService = false;
    const auto link = radio_.links_.find(identifier_);
    if (link == radio_.links_.end()) return;
    link->second.notifying.clear();
    radio_.report(identifier_, [](BluetoothCentral::Delegate& delegate, const Peripheral& peripheral) {
        delegate.servicesInvalidated(peripheral, std::array{OrbinexProtocol::serviceUUID});
    });
}

void SimulatedPhone::changeAddress(const UUID& identifier) {
    if (isConnected()) return;
    identifier_ = identifier;
    radio_.reconsider(*this);
}

void SimulatedPhone::notify(const UUID& characteristic, ByteView value) {
    if (isNotifying(characteristic)) radio_.deliver(identifier_, characteristic, value);
}

void SimulatedPhone::tell(const UUID& characteristic, ByteView value) {
    radio_.deliver(identifier_, characteristic, value);
}

void SimulatedPhone::send(const DecodedPacket& packet) {
    const bool isKeyboard = std::holds_alternative<DecodedPacket::KeyStroke>(packet.value) ||
                            std::holds_alternative<DecodedPacket::Text>(packet.value);
    notify(
        isKeyboard ? OrbinexProtocol::keyboardCharacteristicUUID : OrbinexProtocol::mouseCharacteristicUUID,
        packet.encode());
}

void SimulatedPhone::send(const ControlMessage& message) {
    notify(OrbinexProtocol::controlCharacteristicUUID, message.encode());
}

}  // namespace orbinex
