#pragma once

#include <QString>
#include <Qt>
#include <vector>

#include "protocol/input_packet.h"

namespace orbinex::demo {

/// What the phone sends for a key of a computer's keyboard that is not typed as text: keys that edit or move,
/// and characters with Control, which is the phone's ⌘. Nothing for keys that type.
[[nodiscard]] std::vector<DecodedPacket> packetsOfKey(int key, Qt::KeyboardModifiers modifiers);

/// What a text field's new content has that its old one had not, as the phone sends it, a word a packet.
/// What was taken away is not told: the key that did so is.
[[nodiscard]] std::vector<DecodedPacket> packetsOfTyping(const QString& before, const QString& after);

}  // namespace orbinex::demo
