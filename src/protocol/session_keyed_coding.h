#pragma once

#include <nlohmann/json_fwd.hpp>

#include "protocol/session_records.h"

namespace orbinex {

// Track and colour states as JSON objects whose keys are the field names; the control mode is written as its
// raw value. Reading needs every key, each of its own type, and throws nlohmann::json::exception otherwise;
// further keys are ignored. A number that is not finite has no JSON form: it is written as null, which does
// not read back.

void to_json(nlohmann::json& json, const DAWTrackState& track);
void from_json(const nlohmann::json& json, DAWTrackState& track);

void to_json(nlohmann::json& json, const DAWColorState& color);
void from_json(const nlohmann::json& json, DAWColorState& color);

}  // namespace orbinex
