#pragma once

#include <string>
#include <string_view>

#include "base/bytes.h"
#include "protocol/control_message.h"

namespace orbinex::test_phone {

/// Text from elsewhere, fit to be part of a line: what could move the cursor or end the line is replaced.
std::string printable(std::string_view text);
/// Lower-case hex digits without spaces.
std::string hex(ByteView bytes);

/// One line that tells a person everything that a message holds. Its first word is the kind of message.
std::string describe(const ControlMessage& message);
/// The same for what the computer has written; "undecodable" and the bytes when it is no message.
std::string describeWritten(ByteView value);

}  // namespace orbinex::test_phone
