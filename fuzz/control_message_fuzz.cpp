#include "protocol/control_message.h"
#include "require.h"

using namespace orbinex;

namespace {

struct Check {
    /// Of the message as received.
    std::size_t received;
    std::size_t encoded;

    void operator()(const ControlMessage::Hello& hello) const {
        REQUIRE(hello.macName.size() <= 3 * received);
        REQUIRE(encoded <= 2 + maximumIdentityBytes);
    }
    void operator()(const ControlMessage::ActiveApp& app) const {
        REQUIRE(!app.bundleID.empty() && app.bundleID.size() <= std::size_t{3} * 128);
        REQUIRE(encoded <= 1 + maximumIdentityBytes);
    }
    void operator()(const SessionTelemetry& telemetry) const {
        REQUIRE(!telemetry.timecode.empty() && !telemetry.appVersion.empty() &&
                !telemetry.timelineName.empty());
        REQUIRE(!telemetry.pageName.empty() && !telemetry.playbackSpeed.empty());
    }
    void operator()(const DAWHeader& header) const {
        REQUIRE(!header.projectName.empty() && !header.clipName.empty());
        REQUIRE(header.nodeCount >= 1 && header.selectedNodeIndex >= 1);
    }
    void operator()(const DAWTrackState& track) const {
        REQUIRE(!track.badge.empty() && !track.name.empty() && !track.clipName.empty() &&
                !track.format.empty());
        REQUIRE(track.totalTracks >= 1);
    }
    void operator()(const DAWCommand& command) const {
        const std::string text = command.encode();
        const auto again = DAWCommand::decode(text);
        // As texts, because not-a-number is not equal to itself.
        REQUIRE(again && again->encode() == text);
        if (const auto* const select = std::get_if<DAWCommand::SelectTrack>(&command.value)) {
            REQUIRE(select->trackIndex >= 1);
        }
    }
    void operator()(const DAWMeterPacket&) const { REQUIRE(encoded <= 120); }
    void operator()(const ControlMessage::DisconnectRequest&) const { REQUIRE(encoded == 1); }
    void operator()(const ControlMessage::Goodbye&) const { REQUIRE(encoded == 1); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto message = ControlMessage::decode({data, size});
    if (!message) return 0;
    const Bytes first = message->encode();
    REQUIRE(first.front() == data[0]);
    std::visit(Check{size, first.size()}, message->value);

    // A name may be cut within a character, which the next reader repairs; after that nothing moves.
    const auto second = ControlMessage::decode(first);
    REQUIRE(second && second->value.index() == message->value.index());
    const Bytes settled = second->encode();
    const auto third = ControlMessage::decode(settled);
    REQUIRE(third && third->encode() == settled);
    const bool carriesCutText = std::holds_alternative<ControlMessage::Hello>(message->value) ||
                                std::holds_alternative<ControlMessage::ActiveApp>(message->value);
    REQUIRE(carriesCutText || settled == first);
    return 0;
}
