// A time of the pace at which a finger moves a pointer, over the air: nothing is lost, and nothing swapped.

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <time.h>

#include "app/linux/qt_main_queue.h"
#include "input/x11/x_client.h"
#include "link/bluez/bluez_bus.h"
#include "link/bluez/bluez_names.h"
#include "link/bluez/bluez_objects.h"
#include "link/bluez/notify_socket.h"
#include "protocol/gatt.h"
#include "test_phone/numbered_moves.h"
#include "vm/link_scenario.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;
using test_phone::Offset;
using test_phone::offsetAfter;

constexpr std::uint32_t perSecond = 125;
/// The machine is slow; what is late is sent as soon as possible.
constexpr Milliseconds rateLimit = 8min;

class NotificationScenario : public LinkScenario {
  protected:
    /// Where the pointer has been, from where it is now.
    void watchPointer() {
        XClient& client = desktop().client();
        client.takeEvents();
        start_ = client.pointer();
    }
    void notePointer() {
        for (const auto& event : desktop().client().takeEvents()) {
            if (event.type == XClient::Event::Type::motion)
                places_.push_back({event.x - start_.first, event.y - start_.second});
        }
    }

    /// The phone sends numbered moves; a client sees the pointer in each one's place, one after the other.
    void followMoves(std::uint32_t seconds);

    /// The phone's own words of what it has sent.
    [[nodiscard]] std::string sent() const {
        const auto& line = phone().found();
        return line.substr(line.find("rate ") + 5);
    }

    std::pair<int, int> start_;
    std::vector<Offset> places_;
};

void NotificationScenario::followMoves(std::uint32_t seconds) {
    const std::uint32_t total = seconds * perSecond;
    ASSERT_NO_FATAL_FAILURE(meet());
    watchPointer();
    const auto programBefore = program().processorTime();
    const auto daemonBefore = daemon().processorTime();

    phone().send("rate " + std::to_string(perSecond) + " " + std::to_string(seconds));
    const auto hasAll = [&] {
        notePointer();
        return places_.size() >= total;
    };
    EXPECT_TRUE(waitUntil(hasAll, rateLimit)) << places_.size() << " moves have been seen";
    ASSERT_TRUE(phone().waitFor("ok rate " + std::to_string(total), limit));
    notePointer();
    ASSERT_EQ(places_.size(), total);
    EXPECT_EQ(places_.back(), offsetAfter(total)) << places_.back().x << " " << places_.back().y;
    int astray = 0;
    for (std::uint32_t i = 0; i < total; ++i) astray += places_[i] == offsetAfter(i + 1) ? 0 : 1;
    const auto used = [total](Milliseconds now, Milliseconds before) {
        return static_cast<double>((now - before).count()) / total;
    };
    EXPECT_EQ(astray, 0) << "places off the path";
    std::printf("figures: %s; processor time a move: orbinex %.2f ms, bluetoothd (for both ends) %.2f ms\n",
                sent().c_str(), used(program().processorTime(), programBefore),
                used(daemon().processorTime(), daemonBefore));
}

TEST_F(NotificationScenario, twentySecondsOfMovesAreSeenByAClientWithoutALoss) {
    followMoves(20);
}
TEST_F(NotificationScenario, aMinuteOfMovesIsSeenByAClientWithoutALoss) {
    followMoves(60);
}

/// A program that does nothing but listen, built of the same parts.
class Listener {
  public:
    static constexpr std::uint32_t mostNumbers = 100'000;

    Listener() {
        bus_.onOwnerChanged = [] {};
        bus_.onSilence = [] {};
        bus_.onInterfacesAdded = [](const auto&...) {};
        bus_.onInterfacesRemoved = [](const auto&...) {};
        bus_.onPropertiesChanged = [this](const QString& path, const QString&, const QVariantMap& changed,
                                          const QStringList&) {
            if (path == characteristic_ && changed.contains(QStringLiteral("Value")))
                hear(changed[QStringLiteral("Value")].toByteArray());
        };
        bus_.start();
    }

    /// By their numbers: how often each has been heard.
    std::vector<int> heard;
    std::uint32_t count = 0;
    /// Those that came after one with a higher number.
    int late = 0;

    template <class Condition>
    [[nodiscard]] static bool runUntil(Condition condition, Milliseconds span) {
        const auto end = std::chrono::steady_clock::now() + span;
        // Wakes up now and then, for the end.
        QTimer tick;
        tick.start(500);
        while (!condition() && std::chrono::steady_clock::now() < end)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return condition();
    }

    BluezBus::Reply call(const QString& path, const char* interface, const char* method,
                         const QVariantList& arguments = {}) {
        std::optional<BluezBus::Reply> answer;
        EXPECT_TRUE(runUntil([this] { return bus_.isOwned(); }, 10s));
        bus_.call(path, interface, method, arguments, 30s,
                  [&](const BluezBus::Reply& reply) { answer = reply; });
        EXPECT_TRUE(runUntil([&] { return answer.has_value(); }, 60s)) << method;
        EXPECT_FALSE(answer->error) << method;
        return *answer;
    }

    [[nodiscard]] BluezObjects objects() {
        using Managed = QMap<QDBusObjectPath, BluezInterfaces>;
        const auto reply = call("/", Bluez::objectManager, "GetManagedObjects");
        BluezObjects result;
        const auto managed = qdbus_cast<Managed>(reply.arguments.at(0).value<QDBusArgument>());
        for (auto it = managed.begin(); it != managed.end(); ++it) result.add(it.key().path(), it.value());
        return result;
    }

    void subscribe(const QString& characteristic, bool bySocket) {
        characteristic_ = characteristic;
        heard.clear();
        count = 0;
        late = 0;
        if (!bySocket) {
            call(characteristic, Bluez::characteristic, "StartNotify");
            return;
        }
        const auto reply = call(characteristic, Bluez::characteristic, "AcquireNotify", {QVariantMap()});
        socket_ = std::make_unique<NotifySocket>(
            reply.arguments.at(0).value<QDBusUnixFileDescriptor>(),
            [this](ByteView value) {
                hear(QByteArray(reinterpret_cast<const char*>(value.data()),
                                static_cast<qsizetype>(value.size())));
            },
            [] {});
    }
    void unsubscribe() {
        if (socket_) {
            socket_.reset();
        } else {
            call(characteristic_, Bluez::characteristic, "StopNotify");
        }
    }

  private:
    void hear(const QByteArray& value) {
        constexpr int numberLength = 4;
        ++count;
        if (value.size() < numberLength) return;
        std::uint32_t number = 0;
        for (int i = 0; i < numberLength; ++i)
            number |= std::uint32_t{static_cast<std::uint8_t>(value[value.size() - numberLength + i])}
                      << (8 * i);
        if (number >= mostNumbers) return;
        if (number < heard.size()) {
            ++late;
        } else {
            heard.resize(number + 1);
        }
        ++heard[number];
    }

    QtMainQueue queue_;
    BluezBus bus_{queue_, QDBusConnection::systemBus()};
    QString characteristic_;
    std::unique_ptr<NotifySocket> socket_;
};

double ownProcessorMilliseconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

TEST_F(NotificationScenario, socketsAndSignalsBringEverythingAtTheirOwnCost) {
    ASSERT_NO_FATAL_FAILURE(meet());
    endProgram();
    const auto devices = bluetooth().devices(hostAdapter);
    ASSERT_EQ(devices.size(), 1U);
    ASSERT_TRUE(isLeft(phone()));
    auto device = QString::fromStdString("/org/bluez/" + hostAdapter + "/dev_" + devices[0].address);
    device.replace(':', '_');

    Listener listener;
    listener.call(device, Bluez::device, "Connect");
    const auto areResolved = [&] {
        const auto all = bluetooth().devices(hostAdapter);
        return !all.empty() && all[0].areServicesResolved;
    };
    ASSERT_TRUE(waitUntil(areResolved, limit));
    const auto objects = listener.objects();
    const auto service = findService(objects, device, OrbinexProtocol::serviceUUID);
    QString mouse;
    for (const auto& known : characteristicsOf(objects, service)) {
        if (known.uuid == OrbinexProtocol::mouseCharacteristicUUID) mouse = known.path;
    }
    ASSERT_FALSE(mouse.isEmpty());

    constexpr std::uint32_t moves = 10 * perSecond;
    for (const bool bySocket : {true, false}) {
        listener.subscribe(mouse, bySocket);
        ASSERT_TRUE(phone().waitFor("subscribed mouse", limit));
        const auto daemonBefore = daemon().processorTime();
        const auto ownBefore = ownProcessorMilliseconds();
        phone().send("rate " + std::to_string(perSecond) + " 10");
        EXPECT_TRUE(Listener::runUntil([&] { return listener.count >= moves; }, rateLimit));
        const auto own = ownProcessorMilliseconds() - ownBefore;
        const auto inDaemon = static_cast<double>((daemon().processorTime() - daemonBefore).count());
        ASSERT_TRUE(phone().waitFor("ok rate", limit));
        EXPECT_EQ(listener.heard, std::vector<int>(moves, 1));
        EXPECT_EQ(listener.late, 0);
        std::printf("figures: %s: %s; processor time each: own %.3f ms, bluetoothd (for both ends) %.2f ms\n",
                    bySocket ? "AcquireNotify" : "StartNotify", sent().c_str(), own / moves,
                    inDaemon / moves);
        listener.unsubscribe();
        ASSERT_TRUE(phone().waitFor("unsubscribed mouse", limit));
    }
    listener.call(device, Bluez::device, "Disconnect");
}

}  // namespace
}  // namespace orbinex::test
