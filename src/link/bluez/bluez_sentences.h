#pragma once

#include <string>

#include "link/bluez/bluez_errors.h"

namespace orbinex {

/// What an answer of bluetoothd or of the bus means, as a sentence for a person. What is not known is quoted
/// as it came.
std::string sentenceFor(const BluezError& error);

}  // namespace orbinex
