#pragma once

#include <QDBusUnixFileDescriptor>
#include <QSocketNotifier>
#include <functional>
#include <memory>

#include "base/bytes.h"

namespace orbinex {

/// One characteristic's notifications as packets of a socket that bluetoothd has handed over. Closing it,
/// that is destroying this, ends the subscription. It may be destroyed from within its own callbacks.
class NotifySocket {
  public:
    /// `onValue` gets every packet, valid for the call; `onEnd` is called once, when the other end closes.
    NotifySocket(const QDBusUnixFileDescriptor& descriptor, std::function<void(ByteView)> onValue,
                 std::function<void()> onEnd);
    NotifySocket(const NotifySocket&) = delete;
    NotifySocket& operator=(const NotifySocket&) = delete;
    ~NotifySocket();

    /// Takes what has arrived and not been taken yet, at most a turn's worth.
    void drain();

  private:
    struct Callbacks {
        std::function<void(ByteView)> onValue;
        std::function<void()> onEnd;
    };

    QDBusUnixFileDescriptor descriptor_;
    /// Shared with a drain that is under way: what a callback holds lives until it returns.
    std::shared_ptr<const Callbacks> callbacks_;
    std::unique_ptr<QSocketNotifier> notifier_;
    /// Set by the destructor for a drain that is under way.
    bool* isGone_ = nullptr;
};

}  // namespace orbinex
