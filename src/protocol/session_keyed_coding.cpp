#include "protocol/session_keyed_coding.h"

#include <nlohmann/json.hpp>

namespace orbinex {

namespace {

using Json = nlohmann::json;

// nlohmann/json turns numbers, and even booleans, into whatever arithmetic type is asked for; here a field of
// another type is an error.

[[noreturn]] void refuse(const char* key, const Json& value) {
    throw Json::type_error::create(302, std::string("\"") + key + "\" does not hold what it should", &value);
}

void read(const Json& json, const char* key, std::string& field) {
    field = json.at(key).get<std::string>();
}

void read(const Json& json, const char* key, bool& field) {
    field = json.at(key).get<bool>();
}

void read(const Json& json, const char* key, double& field) {
    const Json& value = json.at(key);
    if (!value.is_number()) refuse(key, value);
    field = value.get<double>();
}

void read(const Json& json, const char* key, std::int64_t& field) {
    const Json& value = json.at(key);
    const bool tooLarge = value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX;
    if (!value.is_number_integer() || tooLarge) refuse(key, value);
    field = value.get<std::int64_t>();
}

void read(const Json& json, const char* key, DAWControlMode& field) {
    const Json& value = json.at(key);
    const auto mode = controlModeFromRawValue(value.get<std::string>());
    if (!mode) refuse(key, value);
    field = *mode;
}

void write(Json& json, const char* key, DAWControlMode field) {
    json[key] = rawValue(field);
}

template <class Field>
void write(Json& json, const char* key, const Field& field) {
    json[key] = field;
}

/// Calls `visit(key, field)` for every field, so that reading and writing cannot come to differ.
template <class Track, class Visit>
void visitTrack(Track& track, const Visit& visit) {
    visit("index", track.index);
    visit("totalTracks", track.totalTracks);
    visit("badge", track.badge);
    visit("name", track.name);
    visit("clipName", track.clipName);
    visit("format", track.format);
    visit("volumeDB", track.volumeDB);
    visit("pan", track.pan);
    visit("isMuted", track.isMuted);
    visit("isSolo", track.isSolo);
    visit("isArmed", track.isArmed);
    visit("isLocked", track.isLocked);
    visit("isMaster", track.isMaster);
    visit("voiceIsolationEnabled", track.voiceIsolationEnabled);
    visit("voiceIsolationAmount", track.voiceIsolationAmount);
    visit("dialogueLevelerEnabled", track.dialogueLevelerEnabled);
    visit("dialogueLevelerGainDB", track.dialogueLevelerGainDB);
    visit("controlMode", track.controlMode);
    visit("hasActiveClip", track.hasActiveClip);
    visit("clipUID", track.clipUID);
}

template <class Color, class Visit>
void visitColor(Color& color, const Visit& visit) {
    visit("clipName", color.clipName);
    visit("nodeCount", color.nodeCount);
    visit("selectedNodeIndex", color.selectedNodeIndex);
    visit("isNodeEnabled", color.isNodeEnabled);
    visit("liftR", color.liftR);
    visit("liftG", color.liftG);
    visit("liftB", color.liftB);
    visit("gainR", color.gainR);
    visit("gainG", color.gainG);
    visit("gainB", color.gainB);
    visit("contrast", color.contrast);
    visit("saturation", color.saturation);
}

}  // namespace

void to_json(Json& json, const DAWTrackState& track) {
    json = Json::object();
    visitTrack(track, [&](const char* key, const auto& field) { write(json, key, field); });
}

void from_json(const Json& json, DAWTrackState& track) {
    visitTrack(track, [&](const char* key, auto& field) { read(json, key, field); });
}

void to_json(Json& json, const DAWColorState& color) {
    json = Json::object();
    visitColor(color, [&](const char* key, const auto& field) { write(json, key, field); });
}

void from_json(const Json& json, DAWColorState& color) {
    visitColor(color, [&](const char* key, auto& field) { read(json, key, field); });
}

}  // namespace orbinex
