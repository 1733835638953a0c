#include "protocol/session_keyed_coding.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

using namespace orbinex;
using nlohmann::json;

namespace {

const json trackObject = json::parse(R"({
    "index": 2, "totalTracks": 5, "badge": "A2", "name": "Dialogue", "clipName": "Take 7", "format": "MONO",
    "volumeDB": -6.25, "pan": -37.5, "isMuted": true, "isSolo": false, "isArmed": true, "isLocked": false,
    "isMaster": true, "voiceIsolationEnabled": false, "voiceIsolationAmount": 65, "dialogueLevelerEnabled": true,
    "dialogueLevelerGainDB": 3.5, "controlMode": "SHORTCUT", "hasActiveClip": true, "clipUID": "uid"})");

const json colorObject = json::parse(R"({
    "clipName": "Shot", "nodeCount": 4, "selectedNodeIndex": 2, "isNodeEnabled": true, "liftR": 0.1, "liftG": 0.2,
    "liftB": 0.3, "gainR": 1.1, "gainG": 1.2, "gainB": 1.3, "contrast": 1.4, "saturation": 1.5})");

template <class State>
void needsEveryKeyOfItsType(const json& object) {
    EXPECT_EQ(json(object.get<State>()), object);
    for (const auto& [key, value] : object.items()) {
        json lacking = object;
        lacking.erase(key);
        EXPECT_THROW(lacking.get<State>(), json::exception) << key;
        json other = object;
        // A flag is no number, a number no flag, and neither is a text.
        if (value.is_boolean() || value.is_string())
            other[key] = 1;
        else
            other[key] = true;
        EXPECT_THROW(other.get<State>(), json::exception) << key;
    }
    EXPECT_THROW(json::array().get<State>(), json::exception);
}

TEST(KeyedCoding, needsEveryFieldOfATrack) {
    needsEveryKeyOfItsType<DAWTrackState>(trackObject);
}

TEST(KeyedCoding, needsEveryFieldOfAColorState) {
    needsEveryKeyOfItsType<DAWColorState>(colorObject);
}

TEST(KeyedCoding, refusesNumbersThatAFieldCannotHold) {
    for (const json& index : {json(1.5), json(1e300), json(UINT64_MAX), json(nullptr)}) {
        json track = trackObject;
        track["index"] = index;
        EXPECT_THROW(track.get<DAWTrackState>(), json::exception) << index;
    }
    json track = trackObject;
    track["index"] = INT64_MIN;
    track["pan"] = 7;
    EXPECT_EQ(track.get<DAWTrackState>().index, INT64_MIN);
    EXPECT_EQ(track.get<DAWTrackState>().pan, 7);
    track["controlMode"] = "S";
    EXPECT_THROW(track.get<DAWTrackState>(), json::exception);
}

}  // namespace
