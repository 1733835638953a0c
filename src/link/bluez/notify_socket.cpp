#include "link/bluez/notify_socket.h"

#include <array>
#include <cerrno>
#include <utility>

#include <poll.h>
#include <sys/socket.h>

namespace orbinex {

namespace {

/// The longest value of an attribute (Bluetooth Core Specification, Vol 3, Part F, 3.2.9), in bytes.
constexpr std::size_t longestValue = 512;
/// Packets taken in one turn, so that a flood lets timers and other events through.
constexpr int packetsAtATime = 64;

/// An empty packet is read as the end is.
bool isHungUp(int descriptor) {
    pollfd end{descriptor, 0, 0};
    return ::poll(&end, 1, 0) == 1;
}

}  // namespace

NotifySocket::NotifySocket(const QDBusUnixFileDescriptor& descriptor, std::function<void(ByteView)> onValue,
                           std::function<void()> onEnd)
    : descriptor_(descriptor),
      callbacks_(std::make_shared<const Callbacks>(Callbacks{std::move(onValue), std::move(onEnd)})),
      notifier_(std::make_unique<QSocketNotifier>(descriptor_.fileDescriptor(), QSocketNotifier::Read)) {
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { drain(); });
}

NotifySocket::~NotifySocket() {
    if (isGone_) *isGone_ = true;
    notifier_->setEnabled(false);
    // It may be what is calling.
    notifier_.release()->deleteLater();
}

void NotifySocket::drain() {
    std::array<std::uint8_t, longestValue> packet{};
    const auto callbacks = callbacks_;
    bool isGone = false;
    isGone_ = &isGone;
    for (int i = 0; i < packetsAtATime; ++i) {
        const auto size = ::recv(descriptor_.fileDescriptor(), packet.data(), packet.size(), MSG_DONTWAIT);
        if (size < 0 && (errno == EAGAIN || errno == EINTR)) break;
        if (size < 0 || (size == 0 && isHungUp(descriptor_.fileDescriptor()))) {
            notifier_->setEnabled(false);
            isGone_ = nullptr;
            callbacks->onEnd();
            return;
        }
        callbacks->onValue(ByteView(packet.data(), static_cast<std::size_t>(size)));
        if (isGone) return;
    }
    isGone_ = nullptr;
}

}  // namespace orbinex
