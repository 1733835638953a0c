// Services, values, writes and notifications of a connected phone.

#include <QDBusArgument>

#include <gtest/gtest.h>

#include "bluez_world.h"
#include "editor_bridge/fader_reports.h"
#include "link/bluez/bluez_names.h"
#include "protocol/gatt.h"

namespace orbinex::test {
namespace {

using namespace std::chrono_literals;
using namespace OrbinexProtocol;

const UUID& mouse = mouseCharacteristicUUID;

QString pathOf(const BluezWorld& world, const UUID& uuid) {
    for (const auto& [path, interfaces] : world.bluez.objects) {
        const auto text = interfaces[Bluez::characteristic]["UUID"].toString().toUpper().toStdString();
        if (text == uuid.text()) return path;
    }
    return {};
}

TEST(BluezGatt, takesASocketWhereOneIsOfferedElseSignals) {
    const struct {
        const char* what;
        std::function<void(BluezWorld&)> prepare;
        int acquired;
        int started;
    } rows[] = {
        {"offered", [](BluezWorld&) {}, 1, 0},
        {"not offered", [](BluezWorld& world) { world.phone.offersSockets = false; }, 0, 1},
        {"refused",
         [](BluezWorld& world) {
             world.bluez.refuse("AcquireNotify", "org.bluez.Error.NotPermitted", "Notify acquired");
         },
         1, 1},
        {"malformed",
         [](BluezWorld& world) {
             world.bluez.scripts["AcquireNotify"] = [&](const QDBusMessage& call) {
                 world.bluez.answer(call, {"no socket", 5});
             };
         },
         1, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        BluezWorld world;
        row.prepare(world);
        world.establish();
        EXPECT_EQ(world.bluez.count("AcquireNotify"), row.acquired);
        EXPECT_EQ(world.bluez.count("StartNotify"), row.started);
        Lines expected;
        for (int i = 0; i < 300; ++i) {
            expected.push_back("mouse=" + std::to_string(i));
            world.bluez.notify(world.phone, mouse, QByteArray::number(i));
            if (i % 100 == 99) world.settle();
        }
        world.bluez.notify(world.phone, controlCharacteristicUUID, "not subscribed");
        EXPECT_EQ(world.take(), expected);
        world.central->setNotify(world.id(), mouse, false);
        EXPECT_EQ(world.take(), Lines{"mouse off"});
        world.bluez.notify(world.phone, mouse, "late");
        EXPECT_EQ(world.take(), Lines{});
    }
}

TEST(BluezGatt, takesUpASessionThatHasOutlivedItsConnection) {
    BluezWorld world;
    world.phone.offersSockets = false;
    world.establish();
    world.bluez.drop(world.phone);
    world.take();
    world.central->connect(world.iPhone(), Initiative::user);
    world.settle();
    world.discoverCharacteristics();
    world.bluez.refuse("StartNotify", "org.bluez.Error.InProgress", "In Progress");
    world.take();
    world.central->setNotify(world.id(), mouse, true);
    EXPECT_EQ(world.take(), Lines{"mouse on"});
    world.bluez.change(pathOf(world, mouse), Bluez::characteristic, {{"Notifying", false}});
    world.central->setNotify(world.id(), mouse, true);
    EXPECT_EQ(world.take(), Lines{"mouse off: Bluetooth is busy. Try again in a moment."});
    world.bluez.scripts.clear();
}

TEST(BluezGatt, subscribesAgainWhenASocketEndsOnAStandingConnection) {
    BluezWorld world;
    world.establish();
    world.bluez.closeSockets(world.phone.path);
    world.run(1100ms);
    world.bluez.notify(world.phone, mouse, "again");
    auto told = world.take();
    std::erase(told, "mouse on");
    EXPECT_EQ(told, Lines{"mouse=again"});
    EXPECT_TRUE(world.central->isConnected(world.id()));
}

TEST(BluezGatt, tellsOfALostConnectionOnceWhateverComesFirst) {
    for (const bool socketsFirst : {false, true}) {
        BluezWorld world;
        world.establish();
        if (socketsFirst) world.bluez.closeSockets("/");
        world.settle();
        world.bluez.drop(world.phone);
        world.run(5s);
        EXPECT_EQ(world.take(), Lines{"disconnected"});
        EXPECT_EQ(world.bluez.count("AcquireNotify"), 1);
    }
}

TEST(BluezGatt, tellsOnceOfAServiceThatGoesOrMoves) {
    for (const bool movesAtOnce : {false, true}) {
        BluezWorld world;
        world.establish();
        world.bluez.withdrawService(world.phone);
        if (!movesAtOnce) {
            EXPECT_EQ(world.take(), Lines{"invalidated 1"});
        }
        world.bluez.offerService(world.phone, 0x21);
        EXPECT_EQ(world.take(), movesAtOnce ? Lines{"invalidated 1"} : Lines{});
        world.run(5s);
        EXPECT_EQ(world.bluez.count("AcquireNotify"), 1) << "not at the old path";
        world.discoverCharacteristics();
        world.central->setNotify(world.id(), mouse, true);
        world.settle();
        world.bluez.notify(world.phone, mouse, "moved");
        EXPECT_EQ(world.take(), (Lines{"1 services", "4 characteristics", "mouse on", "mouse=moved"}));
    }
}

TEST(BluezGatt, reportsWhatAPhoneLacks) {
    {
        BluezWorld world;
        world.phone.hasService = false;
        world.connect();
        EXPECT_EQ(world.take(), (Lines{"connected", "0 services"}));
    }
    {
        BluezWorld world;
        world.phone.characteristics.pop_back();
        world.connect();
        EXPECT_EQ(world.take(), (Lines{"connected", "1 services", "3 characteristics"}));
    }
}

TEST(BluezGatt, answersTheQuestionForServicesOnceTheyAreResolved) {
    BluezWorld world;
    world.discover();
    world.bluez.scripts["Connect"] = [&](const QDBusMessage& call) {
        world.bluez.change(world.phone.path, Bluez::device, {{"Connected", true}});
        world.bluez.answer(call);
    };
    world.central->connect(world.iPhone(), Initiative::user);
    world.settle();
    world.discoverCharacteristics();
    world.run(10s);
    EXPECT_EQ(world.take(), Lines{"connected"});
    world.bluez.offerService(world.phone, 0x15);
    world.bluez.change(world.phone.path, Bluez::device, {{"ServicesResolved", true}});
    EXPECT_EQ(world.take(), Lines{"1 services"});
}

TEST(BluezGatt, writesAsAskedAndBoundsWhatIsNotTaken) {
    BluezWorld world;
    world.establish();
    const Bytes value{1, 2, 3};
    world.bluez.hang("WriteValue");
    world.central->writeValue(world.id(), controlCharacteristicUUID, value, WriteType::withResponse);
    for (std::uint8_t i = 0; i < 200; ++i) {
        world.central->writeValue(world.id(), controlCharacteristicUUID, Bytes{1, 2, i},
                                  WriteType::withoutResponse);
    }
    world.settle();
    ASSERT_EQ(world.bluez.kept.size(), 64U);
    const auto kind = [](const QDBusMessage& call) {
        return qdbus_cast<QVariantMap>(call.arguments()[1]).value("type").toString();
    };
    EXPECT_EQ(kind(world.bluez.kept[0]), "request");
    EXPECT_EQ(kind(world.bluez.kept[1]), "command");
    EXPECT_EQ(world.bluez.kept[1].arguments()[0].toByteArray(), QByteArray("\1\2\0", 3));
    // Answers of either kind let those go that wait, in their order.
    world.bluez.fail(world.bluez.kept[0], "org.bluez.Error.Failed", "Not connected");
    for (std::size_t i = 1; i < world.bluez.kept.size(); ++i) {
        world.bluez.answer(world.bluez.kept[i]);
        world.settle();
    }
    ASSERT_EQ(world.bluez.kept.size(), 201U);
    for (int i = 0; i < 200; ++i) {
        const auto bytes = world.bluez.kept[static_cast<std::size_t>(i) + 1].arguments()[0].toByteArray();
        EXPECT_EQ(static_cast<std::uint8_t>(bytes.at(2)), i);
    }
    constexpr std::size_t room = BluezGatt::maximumUnansweredWrites + BluezGatt::maximumWaitingWrites;
    static_assert(2 * FaderReports::capacity <= room, "a burst of faders would lose its last words");
    for (std::size_t i = 0; i < room + 100; ++i) {
        world.central->writeValue(world.id(), controlCharacteristicUUID, value, WriteType::withoutResponse);
    }
    world.settle();
    for (std::size_t i = 201; i < world.bluez.kept.size(); ++i) {
        world.bluez.answer(world.bluez.kept[i]);
        world.settle();
    }
    EXPECT_EQ(world.bluez.kept.size(), 201 + room) << "no more than that waits";
    EXPECT_EQ(world.take(), Lines{});
}

TEST(BluezGatt, classifiesFailedReads) {
    const struct {
        std::function<void(FakeBluez&)> prepare;
        const char* told;
    } rows[] = {
        {[](FakeBluez& bluez) {
             bluez.refuse("ReadValue", "org.bluez.Error.Failed", "Operation failed with ATT error: 0x0f");
         },
         "info=: attribute 15"},
        {[](FakeBluez& bluez) { bluez.refuse("ReadValue", "org.bluez.Error.Failed", "Not connected"); },
         "info=: The iPhone is no longer connected."},
        {[](FakeBluez& bluez) { bluez.hang("ReadValue"); },
         "info=: The Bluetooth service of this computer does not answer."},
        {[](FakeBluez& bluez) {
             bluez.scripts["ReadValue"] = [&](const QDBusMessage& call) { bluez.answer(call, {"text"}); };
         },
         "info=: The iPhone sent nothing."},
        {[](FakeBluez& bluez) {
             bluez.scripts["ReadValue"] = [&](const QDBusMessage& call) { bluez.answer(call); };
         },
         "info=: The iPhone sent nothing."},
    };
    for (const auto& row : rows) {
        BluezWorld world;
        world.establish();
        row.prepare(world.bluez);
        world.central->readValue(world.id(), infoCharacteristicUUID);
        world.run(36s);
        EXPECT_EQ(world.take(), Lines{row.told});
    }
}

TEST(BluezGatt, takesHugeEmptyAndMistypedValuesAsTheyAre) {
    for (const bool offersSockets : {true, false}) {
        BluezWorld world;
        world.phone.offersSockets = offersSockets;
        world.establish();
        world.bluez.change(pathOf(world, mouse), Bluez::characteristic, {{"Value", "text"}});
        world.bluez.change(pathOf(world, mouse), Bluez::characteristic, {{"Value", 5}});
        EXPECT_EQ(world.take(), Lines{});
        world.bluez.notify(world.phone, mouse, QByteArray(60'000, 'x'));
        world.bluez.notify(world.phone, mouse, "after");
        const auto told = world.take();
        ASSERT_EQ(told.size(), 2U);
        EXPECT_LE(told[0].size(), 60'006U);
        EXPECT_EQ(told[1], "mouse=after");
    }
}

/// A packet of no bytes is read from a socket as its end is.
TEST(BluezGatt, losesNothingToAnEmptyPacket) {
    BluezWorld world;
    world.establish();
    world.bluez.notify(world.phone, mouse, "");
    world.bluez.notify(world.phone, mouse, "after");
    EXPECT_EQ(world.take(), (Lines{"mouse=", "mouse=after"}));
    world.run(2s);
    EXPECT_EQ(world.bluez.count("AcquireNotify"), 1);
}

TEST(BluezGatt, passesOnWhatCameBeforeTheConnectionEnded) {
    BluezWorld world;
    world.establish();
    Lines expected;
    for (int i = 0; i < 200; ++i) {
        const auto value = QByteArray::number(i);
        world.bluez.notify(world.phone, mouse, value);
        expected.push_back("mouse=" + value.toStdString());
    }
    expected.emplace_back("disconnected");
    world.bluez.drop(world.phone);
    world.settle();
    EXPECT_EQ(world.take(), expected);
}

}  // namespace
}  // namespace orbinex::test
