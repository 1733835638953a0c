#pragma once

#include <QString>

/// Names on the system bus, as BlueZ's doc/*-api.txt gives them.
namespace orbinex::Bluez {

inline constexpr const char* service = "org.bluez";
inline constexpr const char* managerPath = "/org/bluez";
inline constexpr const char* adapter = "org.bluez.Adapter1";
inline constexpr const char* device = "org.bluez.Device1";
/// One for each bearer, where BlueZ is new enough and told to offer what is experimental.
inline constexpr const char* bearerLE = "org.bluez.Bearer.LE1";
inline constexpr const char* bearerBREDR = "org.bluez.Bearer.BREDR1";
inline constexpr const char* gattService = "org.bluez.GattService1";
inline constexpr const char* characteristic = "org.bluez.GattCharacteristic1";
inline constexpr const char* agent = "org.bluez.Agent1";
inline constexpr const char* agentManager = "org.bluez.AgentManager1";
inline constexpr const char* properties = "org.freedesktop.DBus.Properties";
inline constexpr const char* objectManager = "org.freedesktop.DBus.ObjectManager";

inline constexpr const char* noReply = "org.freedesktop.DBus.Error.NoReply";
inline constexpr const char* accessDenied = "org.freedesktop.DBus.Error.AccessDenied";

}  // namespace orbinex::Bluez
