#include "phone_process.h"

#include <QByteArray>
#include <QCoreApplication>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "app/linux/fd_watch.h"
#include "app/linux/qt_main_queue.h"
#include "link/bluez/bluez_names.h"
#include "link/bluez/fake_bluez.h"
#include "protocol/device_info.h"
#include "protocol/gatt.h"
#include "protocol/input_packet.h"

namespace orbinex {

namespace {

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::exit(1);
}

std::array<int, 2> socketPair() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) fail("socketpair");
    return ends;
}

QByteArray bytesOf(const Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

QByteArray move(float x, float y) {
    return bytesOf(DecodedPacket{DecodedPacket::MouseMove{x, y}}.encode());
}

std::int64_t now() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void sleepUntil(std::int64_t time) {
    constexpr std::int64_t second = 1'000'000'000;
    const timespec until{time / second, time % second};
    ::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr);
}

void sendPacket(int socket, const QByteArray& packet) {
    while (::send(socket, packet.constData(), static_cast<std::size_t>(packet.size()), MSG_NOSIGNAL) < 0) {
        if (errno != EAGAIN) fail("send");
        pollfd room{socket, POLLOUT, 0};
        ::poll(&room, 1, -1);
    }
}

}  // namespace

/// What the other process consists of.
class PhoneProcess::Player {
  public:
    Player(const QString& busAddress, bool offersSockets, int orders, int bare, Times& times)
        : orders_(orders),
          bare_(bare),
          times_(times),
          bluez_(busAddress, queue_),
          phone_(bluez_.addPhone("5A:00:00:00:00:01", "OXA1B2C3:iPhone")),
          watch_(orders, [this] { takeOrder(); }) {
        phone_.isBonded = true;
        phone_.offersSockets = offersSockets;
        phone_.info =
            bytesOf(DeviceInfo{OrbinexProtocol::protocolVersion, UUID::random(), "iPhone"}.encode());
        bluez_.rise();
        bluez_.addAdapter(test::FakeBluez::hci0, true);
    }

  private:
    void takeOrder() {
        Order order;
        if (::recv(orders_, &order, sizeof order, 0) != sizeof order) ::_exit(0);
        auto due = now();
        for (int i = 0; i < order.count; ++i) {
            due += order.interval;
            if (order.interval > 0) sleepUntil(due);
            // Not after it: whoever is woken up may have run before this goes on.
            times_.at(static_cast<std::size_t>(i)) = now();
            send(order.way, i % 2 == 0 ? forth_ : back_);
        }
        if (::send(orders_, &order, sizeof order, MSG_NOSIGNAL) < 0) ::_exit(0);
    }

    void send(Way way, const QByteArray& packet) {
        if (way == Way::bareSocket) return sendPacket(bare_, packet);
        if (!phone_.offersSockets) {
            return bluez_.notify(phone_, OrbinexProtocol::mouseCharacteristicUUID, packet);
        }
        if (mouse_.isEmpty()) mouse_ = mousePath();
        sendPacket(bluez_.sockets.at(mouse_), packet);
    }

    [[nodiscard]] QString mousePath() const {
        const auto uuid = QString::fromStdString(OrbinexProtocol::mouseCharacteristicUUID.text()).toLower();
        for (const auto& [path, interfaces] : bluez_.objects) {
            if (interfaces[Bluez::characteristic]["UUID"] == uuid) return path;
        }
        return {};
    }

    const QByteArray forth_ = move(moveX, moveY);
    const QByteArray back_ = move(-moveX, -moveY);
    int orders_;
    int bare_;
    Times& times_;
    QtMainQueue queue_;
    test::FakeBluez bluez_;
    test::FakePhone& phone_;
    FdWatch watch_;
    QString mouse_;
};

PhoneProcess::PhoneProcess(const QString& busAddress, bool offersSockets)
    : orders_(socketPair()), bare_(socketPair()) {
    void* const shared =
        ::mmap(nullptr, sizeof(Times), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) fail("mmap");
    times_ = static_cast<Times*>(shared);
    pid_ = ::fork();
    if (pid_ < 0) fail("fork");
    if (pid_ > 0) {
        ::close(orders_[0]);
        ::close(bare_[0]);
        return;
    }
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::close(orders_[1]);
    ::close(bare_[1]);
    int argc = 1;
    char name[] = "bluetoothd";
    std::array<char*, 2> argv{name, nullptr};
    const QCoreApplication application(argc, argv.data());
    const Player player(busAddress, offersSockets, orders_[0], bare_[0], *times_);
    ::_exit(QCoreApplication::exec());
}

PhoneProcess::~PhoneProcess() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
    ::munmap(times_, sizeof(Times));
    ::close(orders_[1]);
    ::close(bare_[1]);
}

void PhoneProcess::order(Way way, int count, std::chrono::nanoseconds interval) const {
    const Order order{way, count, interval.count()};
    if (count > maximumCount || ::send(orders_[1], &order, sizeof order, MSG_NOSIGNAL) < 0) fail("order");
}

void PhoneProcess::awaitEnd() const {
    Order order;
    if (::recv(orders_[1], &order, sizeof order, 0) != sizeof order) fail("the phone's process");
}

std::chrono::nanoseconds PhoneProcess::sentAt(int n) const {
    return std::chrono::nanoseconds(times_->at(static_cast<std::size_t>(n)));
}

}  // namespace orbinex
