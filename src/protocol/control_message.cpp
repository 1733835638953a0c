#include "protocol/control_message.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "protocol/gatt.h"
#include "protocol/message_type.h"
#include "protocol/session_encoding.h"

namespace orbinex {

namespace {

using OrbinexProtocol::MessageType;
using OrbinexProtocol::textMessage;

/// How much of a received application identifier is looked at.
constexpr std::size_t maximumReceivedIdentityBytes = 128;

Bytes hello(std::uint8_t version, std::string_view name) {
    Bytes bytes = textMessage(MessageType::hello);
    const std::string_view kept = name.substr(0, maximumIdentityBytes);
    bytes.reserve(bytes.size() + 1 + kept.size());
    bytes.push_back(version);
    bytes.insert(bytes.end(), kept.begin(), kept.end());
    return bytes;
}

template <class Content>
std::optional<ControlMessage> wrap(std::optional<Content> content) {
    if (!content) return std::nullopt;
    return ControlMessage{std::move(*content)};
}

std::optional<ControlMessage> decodeHello(ByteView payload) {
    if (payload.empty()) return std::nullopt;
    return ControlMessage{ControlMessage::Hello{payload[0], repairUTF8(payload.subspan(1))}};
}

std::optional<ControlMessage> decodeActiveApp(ByteView payload) {
    const std::string text =
        repairUTF8(payload.first(std::min(payload.size(), maximumReceivedIdentityBytes)));
    const std::string_view bundleID = trimControlCharacters(text);
    if (bundleID.empty()) return std::nullopt;
    return ControlMessage{ControlMessage::ActiveApp{std::string(bundleID)}};
}

std::optional<ControlMessage> decodeRecord(ByteView payload) {
    auto record = decodeSessionRecord(repairUTF8(payload));
    if (!record) return std::nullopt;
    return std::visit([](auto& content) { return ControlMessage{std::move(content)}; }, *record);
}

struct MessageEncoder {
    Bytes operator()(const ControlMessage::Hello& content) const {
        return hello(content.protocolVersion, content.macName);
    }
    Bytes operator()(const ControlMessage::ActiveApp& content) const {
        return encodeActiveApp(content.bundleID);
    }
    Bytes operator()(const SessionTelemetry& content) const { return encodeTelemetry(content); }
    Bytes operator()(const DAWHeader& content) const { return encodeHeader(content); }
    Bytes operator()(const DAWTrackState& content) const { return encodeTrack(content); }
    Bytes operator()(const DAWCommand& content) const {
        return textMessage(MessageType::dawCommand, content.encode());
    }
    Bytes operator()(const DAWMeterPacket& content) const { return encodeMeter(content); }
    Bytes operator()(const ControlMessage::DisconnectRequest&) const {
        return textMessage(MessageType::disconnectRequest);
    }
    Bytes operator()(const ControlMessage::Goodbye&) const { return encodeGoodbye(); }
};

}  // namespace

std::optional<ControlMessage> ControlMessage::decode(ByteView value) {
    if (value.empty()) return std::nullopt;
    const ByteView payload = value.subspan(1);
    switch (static_cast<MessageType>(value[0])) {
        case MessageType::hello: return decodeHello(payload);
        case MessageType::disconnectRequest: return ControlMessage{DisconnectRequest{}};
        case MessageType::goodbye: return ControlMessage{Goodbye{}};
        case MessageType::activeApp: return decodeActiveApp(payload);
        case MessageType::sessionTelemetry: return wrap(decodeTelemetry(repairUTF8(payload)));
        case MessageType::sessionRecord: return decodeRecord(payload);
        case MessageType::dawCommand: return wrap(DAWCommand::decode(repairUTF8(payload)));
        case MessageType::dawMeter: return wrap(decodeMeter(value));
    }
    return std::nullopt;
}

Bytes ControlMessage::encode() const {
    return std::visit(MessageEncoder{}, value);
}

std::string macName(std::string_view computerName) {
    return std::string(computerName.empty() ? "Mac" : computerName);
}

Bytes encodeHello(std::string_view macName) {
    return hello(OrbinexProtocol::protocolVersion, macName);
}

Bytes encodeActiveApp(std::string_view bundleID) {
    return textMessage(MessageType::activeApp, bundleID.substr(0, maximumIdentityBytes));
}

Bytes encodeGoodbye() {
    return textMessage(MessageType::goodbye);
}

}  // namespace orbinex
