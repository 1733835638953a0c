#pragma once

#include <optional>
#include <string>

#include "protocol/daw_command.h"

namespace orbinex {

/// The line, without its end, that tells the bridge script to carry out a command:
///
///     VOL|track|dB, 2 decimals                TC|timecode
///     PAN|track|pan, 1 decimal                PAGE|name in lower case
///     MUTE|track|1 for enabled                LINK|flag
///     LOCK|track|flag                         NEN|node|flag
///     VISO|track|flag|percent                 REFRESH
///     DLEV|track|flag|dB, 1 decimal
///     CDL|node|slope R|G|B|offset R|G|B|power, 4 decimals each|saturation, 3 decimals
///
/// Nothing for what the script cannot do (solo, selecting), for the master's volume, and for pan, mute and
/// lock of a track below 1. A volume, pan or gain that is not finite is what the session makes of it; a
/// colour is written as it is, and the script takes its default.
std::optional<std::string> resolveCommandLine(const DAWCommand& command);

}  // namespace orbinex
