#pragma once

#include <QDBusUnixFileDescriptor>
#include <QSocketNotifier>
#include <functional>
#include <memory>

#include "base/bytes.h"

namespace orbinex::test_phone {

/// One characteristic's way to bluetoothd while computers are subscribed to it: a socket on which every
/// packet is a notification, at a fraction of a signal's cost. It may be destroyed from within its own
/// callback.
class Subscription {
  public:
    /// `onEnd` is called once, when nobody is subscribed any more. Throws std::system_error when there can be
    /// no socket.
    explicit Subscription(std::function<void()> onEnd);
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription();

    /// bluetoothd's end of the socket, to be handed over once.
    QDBusUnixFileDescriptor takeFarEnd();
    /// False when bluetoothd does not take it, after waiting for a second at most.
    [[nodiscard]] bool notify(ByteView value) const;
    /// Returns when bluetoothd has taken everything, after a second at most.
    void waitUntilTaken() const;

  private:
    QDBusUnixFileDescriptor nearEnd_;
    QDBusUnixFileDescriptor farEnd_;
    std::unique_ptr<QSocketNotifier> end_;
};

}  // namespace orbinex::test_phone
