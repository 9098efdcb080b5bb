// Stored preferences bytes of any shape: decoding never throws, and a decoded record survives an
// encode and a second decode unchanged.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "preferences/SwitcherPreferencesCodec.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto decoded = orvane::SwitcherPreferencesCodec::decode(bytes);
    if (!decoded.preferences) {
        if (decoded.error.empty()) {
            std::abort();  // a failure always says why
        }
        return 0;
    }
    const auto encoded = orvane::SwitcherPreferencesCodec::encode(*decoded.preferences);
    if (!encoded.bytes) {
        std::abort();
    }
    const auto again = orvane::SwitcherPreferencesCodec::decode(*encoded.bytes);
    if (!again.preferences || !(*again.preferences == *decoded.preferences)) {
        std::abort();
    }
    return 0;
}
