// One synthetic event record posted to a process to finish a private window focus: the window
// server's 248-byte wire format, written byte by byte so that the host's byte order never matters.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/Identifiers.h"

namespace orvane {

class SkyLightEventRecord {
  public:
    static constexpr std::size_t byteCount = 0xF8;
    using Bytes = std::array<std::uint8_t, byteCount>;

    // The kinds posted by one focus, in posting order.
    static constexpr std::uint8_t firstKind = 0x01;
    static constexpr std::uint8_t secondKind = 0x02;

    SkyLightEventRecord(std::uint8_t kind, WindowIdentifier windowIdentifier);

    const Bytes& bytes() const { return bytes_; }
    // The entry point takes a mutable pointer, though it only reads the record.
    std::uint8_t* data() { return bytes_.data(); }

  private:
    Bytes bytes_{};
};

}  // namespace orvane
