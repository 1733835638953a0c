#include "test_phone/subscription.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace orbinex::test_phone {

Subscription::Subscription(std::function<void()> onEnd) {
    std::array<int, 2> ends{-1, -1};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "no socket for notifications");
    }
    nearEnd_.giveFileDescriptor(ends[0]);
    farEnd_.giveFileDescriptor(ends[1]);
    const timeval patience{1, 0};
    setsockopt(ends[0], SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    // bluetoothd sends nothing; all that there can be to read is the end.
    end_ = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
    QObject::connect(end_.get(), &QSocketNotifier::activated, end_.get(), [this, onEnd = std::move(onEnd)] {
        end_->setEnabled(false);
        const auto once = onEnd;
        once();
    });
}

Subscription::~Subscription() {
    end_->setEnabled(false);
    // It may be what is calling.
    end_.release()->deleteLater();
}

QDBusUnixFileDescriptor Subscription::takeFarEnd() {
    return std::exchange(farEnd_, {});
}

bool Subscription::notify(ByteView value) const {
    return send(nearEnd_.fileDescriptor(), value.data(), value.size(), MSG_NOSIGNAL) >= 0;
}

void Subscription::waitUntilTaken() const {
    // There is no event for it; it takes less than the first nap unless bluetoothd is busy.
    constexpr std::chrono::microseconds nap{500};
    for (int naps = 0; naps < 2000; ++naps) {
        int waiting = 0;
        if (ioctl(nearEnd_.fileDescriptor(), SIOCOUTQ, &waiting) != 0 || waiting == 0) return;
        std::this_thread::sleep_for(nap);
    }
}

}  // namespace orbinex::test_phone
