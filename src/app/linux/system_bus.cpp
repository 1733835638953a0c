#include "app/linux/system_bus.h"

#include <QDBusMessage>

namespace orbinex {

namespace {

constexpr int longestFarewell = 1000;  // milliseconds

}  // namespace

SystemBus::SystemBus() : connection_(QDBusConnection::systemBus()) {}

SystemBus::~SystemBus() {
    if (!connection_.isConnected()) return;
    // The bus takes messages in order: its answer to the last is an answer to all.
    const auto last = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                     "org.freedesktop.DBus", "GetId");
    connection_.call(last, QDBus::Block, longestFarewell);
}

}  // namespace orbinex
