// More notifications at once than a socket holds. At the pace of a finger the machine of tests/vm hears them.

#include <QCoreApplication>
#include <cerrno>
#include <map>
#include <string>

#include <gtest/gtest.h>
#include <sys/socket.h>

#include "bluez_world.h"
#include "link/bluez/bluez_names.h"
#include "protocol/gatt.h"

namespace orbinex::test {
namespace {

using namespace OrbinexProtocol;

/// A phone that numbers what it sends on its mouse and its keyboard, each from 0, and the central that hears
/// it.
class NumberedNotifications : public testing::Test {
  protected:
    void subscribe(bool offersSockets = true) {
        world_.phone.offersSockets = offersSockets;
        world_.establish();
        world_.central->setNotify(world_.id(), keyboardCharacteristicUUID, true);
        ASSERT_EQ(world_.take(), Lines{"keyboard on"});
    }

    QByteArray next(const char* name) { return QByteArray::number(sent_[name]++); }
    void send(const UUID& characteristic, const char* name) {
        world_.bluez.notify(world_.phone, characteristic, next(name));
    }
    void sendMouse() { send(mouseCharacteristicUUID, "mouse"); }
    void sendKeyboard() { send(keyboardCharacteristicUUID, "keyboard"); }

    /// bluetoothd's end of the mouse's socket.
    [[nodiscard]] int mouseSocket() const {
        const auto uuid = QString::fromStdString(mouseCharacteristicUUID.text()).toLower();
        for (const auto& [path, socket] : world_.bluez.sockets) {
            if (world_.bluez.objects.at(path)[Bluez::characteristic]["UUID"] == uuid) return socket;
        }
        return -1;
    }

    /// Counts what the central has told; every value must be the one after the last of its characteristic.
    void expectInOrder() {
        for (const auto& line : world_.seen.lines) {
            const auto name = line.substr(0, line.find('='));
            ASSERT_EQ(line, name + "=" + std::to_string(heard_[name]++));
        }
        world_.seen.lines.clear();
    }
    void expectAllHeard() {
        world_.settle();
        ASSERT_NO_FATAL_FAILURE(expectInOrder());
        EXPECT_EQ(heard_, sent_);
    }

    BluezWorld world_;
    std::map<std::string, int> sent_;
    std::map<std::string, int> heard_;
};

TEST_F(NumberedNotifications, ofAThousandAtOnceAllArriveInOrder) {
    ASSERT_NO_FATAL_FAILURE(subscribe());
    const int socket = mouseSocket();
    ASSERT_GE(socket, 0);
    int refused = 0;
    while (sent_["mouse"] < 1000) {
        const auto value = next("mouse");
        // The program only gets a turn when the socket is full.
        while (::send(socket, value.constData(), static_cast<std::size_t>(value.size()), MSG_NOSIGNAL) < 0) {
            ASSERT_EQ(errno, EAGAIN);
            ASSERT_LT(++refused, 1000);
            QCoreApplication::processEvents();
            ASSERT_NO_FATAL_FAILURE(expectInOrder());
        }
    }
    EXPECT_NO_FATAL_FAILURE(expectAllHeard());
}

TEST_F(NumberedNotifications, ofAThousandSignalsAllArriveInOrder) {
    ASSERT_NO_FATAL_FAILURE(subscribe(false));
    for (int i = 0; i < 1000; ++i) {
        sendMouse();
        if (i % 3 == 0) sendKeyboard();
    }
    EXPECT_NO_FATAL_FAILURE(expectAllHeard());
    EXPECT_TRUE(world_.bluez.sockets.empty());
}

}  // namespace
}  // namespace orbinex::test
