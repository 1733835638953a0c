#include <random>

#include <gtest/gtest.h>

#include "protocol/control_message.h"
#include "protocol/device_info.h"
#include "protocol/input_packet.h"
#include "protocol/session_encoding.h"
#include "support/byte_transcript.h"

using namespace orbinex;
using orbinex::test::hex;
using orbinex::test::typed;

namespace {

/// One message of every kind, as a start for damage.
std::vector<Bytes> messages() {
    const auto session = DAWSessionSnapshot::placeholder();
    return {
        encodeHello("Studio \u00C9"),
        encodeActiveApp("com.example.editor"),
        encodeGoodbye(),
        hex("11"),
        encodeTelemetry({"01:00:00:00", 29.97, "RESOLVE", "Cut", "EDIT", "1X", true}),
        encodeHeader(session),
        encodeTrack(session.tracks.front()),
        encodeMeter(DAWMeterPacket::placeholder()),
        typed(0x16, "VOL|2|-6.25"),
        typed(0x16, "VISO|2|1|65"),
        typed(0x16, "CDL|2|0.1|0|0|1.2|1|1|1|1"),
        typed(0x16, "PAGE|color"),
        typed(0x16, "SEL|4"),
    };
}

Bytes damaged(Bytes bytes, std::mt19937& random) {
    const auto at = [&] { return bytes.begin() + static_cast<std::ptrdiff_t>(random() % bytes.size()); };
    for (unsigned n = 1 + random() % 4; n > 0 && !bytes.empty(); --n) {
        switch (random() % 4) {
            case 0: *at() = static_cast<std::uint8_t>(random()); break;
            case 1: *at() = static_cast<std::uint8_t>("|0123456789+-.einfaHT"[random() % 21]); break;
            case 2: bytes.erase(at(), bytes.end()); break;
            default: bytes.insert(at(), static_cast<std::uint8_t>(random())); break;
        }
    }
    return bytes;
}

TEST(Decoders, surviveTruncationAtEveryLength) {
    for (const Bytes& whole : messages()) {
        for (std::size_t length = 0; length <= whole.size(); ++length) {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
            const auto message = ControlMessage::decode(cut);
            EXPECT_TRUE(message || length < whole.size());
            EXPECT_FALSE(message && message->encode().empty());
        }
    }
}

TEST(Decoders, settleOnWhatTheyHaveReadOnce) {
    std::mt19937 random(20240607);
    const auto sources = messages();
    int decoded = 0;
    for (int i = 0; i < 100000; ++i) {
        const auto message = ControlMessage::decode(damaged(sources[random() % sources.size()], random));
        if (!message) continue;
        ++decoded;
        // A name or application is cut within a character, which the next reader repairs; after that nothing
        // moves.
        const auto second = ControlMessage::decode(message->encode());
        ASSERT_TRUE(second);
        ASSERT_EQ(second->value.index(), message->value.index());
        const auto third = ControlMessage::decode(second->encode());
        ASSERT_TRUE(third);
        ASSERT_EQ(third->encode(), second->encode());
    }
    EXPECT_GT(decoded, 30000);
}

TEST(Decoders, readInputAndDeviceInfoBackUnchanged) {
    std::mt19937 random(5);
    int packets = 0;
    for (int i = 0; i < 100000; ++i) {
        Bytes bytes(random() % 30);
        for (auto& byte : bytes)
            byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() : random() % 8);
        if (const auto packet = DecodedPacket::decode(bytes)) {
            ++packets;
            ASSERT_EQ(DecodedPacket::decode(packet->encode()), packet);
        }
        if (const auto info = DeviceInfo::decode(bytes)) {
            ASSERT_EQ(DeviceInfo::decode(info->encode()), info);
        }
    }
    EXPECT_GT(packets, 10000);
}

}  // namespace
