#pragma once

#include <QDBusConnection>

namespace orbinex {

/// The program's connection to the system bus. What has been sent on it when this object ends arrives: Qt
/// sends from a thread of its own, and drops at the program's end what that has not come to yet.
class SystemBus {
  public:
    SystemBus();
    SystemBus(const SystemBus&) = delete;
    SystemBus& operator=(const SystemBus&) = delete;
    /// Waits until the bus has taken everything; no longer than a second, should it hang.
    ~SystemBus();

    /// Not connected when there is no bus.
    [[nodiscard]] const QDBusConnection& connection() const { return connection_; }

  private:
    QDBusConnection connection_;
};

}  // namespace orbinex
