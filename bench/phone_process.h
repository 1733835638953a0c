#pragma once

#include <QString>
#include <array>
#include <chrono>
#include <cstdint>

#include <sys/types.h>

namespace orbinex {

/// A bluetoothd with a phone that moves the pointer to and fro, in a process of their own, so that being
/// woken up is part of what is measured here. It ends with this object, or with this process.
class PhoneProcess {
  public:
    enum class Way {
        notification,  ///< of the mouse characteristic, as bluetoothd hands it over
        bareSocket,    ///< the same bytes, to bareSocket()
    };
    /// The moves, in points, one after the other.
    static constexpr int moveX = 3;
    static constexpr int moveY = 2;
    /// The most moves of one order.
    static constexpr int maximumCount = 4000;

    /// Must be created before this process has threads, hence before there is an application object. The
    /// phone is bonded, and offers sockets or only signals.
    PhoneProcess(const QString& busAddress, bool offersSockets);
    PhoneProcess(const PhoneProcess&) = delete;
    PhoneProcess& operator=(const PhoneProcess&) = delete;
    ~PhoneProcess();

    /// Orders `count` moves, there and back in turn, one every `interval`; with none, as fast as they are
    /// taken.
    void order(Way way, int count, std::chrono::nanoseconds interval) const;
    /// Returns when the order has been carried out.
    void awaitEnd() const;
    /// When the n-th move of the latest order had been handed over, on the steady clock; that of a signal, to
    /// the bus library.
    [[nodiscard]] std::chrono::nanoseconds sentAt(int n) const;

    /// Where bare moves come out: a socket of the same kind as bluetoothd's.
    [[nodiscard]] int bareSocket() const { return bare_[1]; }

  private:
    using Times = std::array<std::int64_t, maximumCount>;
    struct Order {
        Way way = Way::notification;
        int count = 0;
        std::int64_t interval = 0;
    };
    class Player;

    /// Both with our end second.
    std::array<int, 2> orders_{};
    std::array<int, 2> bare_{};
    /// Shared with the other process.
    Times* times_ = nullptr;
    pid_t pid_ = -1;
};

}  // namespace orbinex
