// Stored trusted devices: a settings file may hold anything.

#include <string_view>

#include "require.h"
#include "trust/trusted_device.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orbinex;
    const auto devices = decodeTrustedDevices({reinterpret_cast<const char*>(data), size});
    if (!devices) return 0;
    // What was read can be stored, and reads back the same.
    const auto encoded = encodeTrustedDevices(*devices);
    REQUIRE(encoded.has_value());
    REQUIRE(decodeTrustedDevices(*encoded) == devices);
    return 0;
}
