#include "activation/SkyLightEventRecord.h"

namespace orvane {

SkyLightEventRecord::SkyLightEventRecord(std::uint8_t kind, WindowIdentifier windowIdentifier) {
    bytes_[0x04] = static_cast<std::uint8_t>(byteCount);
    bytes_[0x08] = kind;
    for (std::size_t offset = 0x20; offset <= 0x2F; ++offset) {
        bytes_[offset] = 0xFF;
    }
    bytes_[0x3A] = 0x10;
    // Least significant byte first, whatever the host's order.
    for (std::size_t index = 0; index < 4; ++index) {
        bytes_[0x3C + index] = static_cast<std::uint8_t>((windowIdentifier >> (8 * index)) & 0xFF);
    }
}

}  // namespace orvane
