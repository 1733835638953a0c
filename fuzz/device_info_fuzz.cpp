#include "base/text.h"
#include "protocol/device_info.h"
#include "require.h"

using namespace orbinex;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteView value(data, size);
    const auto info = DeviceInfo::decode(value);
    REQUIRE(info.has_value() == (size >= 17));
    if (!info) return 0;
    REQUIRE(info->protocolVersion == value[0]);
    REQUIRE(UUID::parse(info->deviceID.text()) == info->deviceID);
    REQUIRE(info->name.size() <= 3 * (size - 17));
    const Bytes again = info->encode();
    REQUIRE(DeviceInfo::decode(again) == info);
    // A name that was well-formed comes back byte by byte.
    if (strictUTF8(value.subspan(17))) REQUIRE(again == Bytes(value.begin(), value.end()));
    return 0;
}
