#pragma once

#include <cstdint>

#include "base/uuid.h"

/// The identifiers that both ends must share. The iPhone is the peripheral and advertises the service.
namespace orbinex::OrbinexProtocol {

/// The one version number of the whole protocol; there is no negotiation, only equality passes.
inline constexpr std::uint8_t protocolVersion = 2;

/// The primary service: scan filter and service discovery.
inline constexpr UUID serviceUUID = UUID::literal("E2C362B1-CE63-4C23-95D9-36653EBF89A6");
/// Input packets as value updates, from the iPhone.
inline constexpr UUID mouseCharacteristicUUID = UUID::literal("4F2E72E9-A12A-4D3E-B3A9-F2E3A0E9311A");
/// Input packets too; the packet's own type byte, not the characteristic, tells what it is.
inline constexpr UUID keyboardCharacteristicUUID = UUID::literal("1A3B5C7D-E9F0-4A1B-2C3D-4E5F6A7B8C9D");
/// The DeviceInfo record, read by the computer.
inline constexpr UUID infoCharacteristicUUID = UUID::literal("7BEAF09E-8D9F-40BF-B2DA-FDEA73616D62");
/// Control messages: value updates from the iPhone, writes from the computer.
inline constexpr UUID controlCharacteristicUUID = UUID::literal("E8D6996B-3188-48E1-8120-39EDF0798AF2");

}  // namespace orbinex::OrbinexProtocol
