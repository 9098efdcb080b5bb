// The identifier types every subsystem shares: windows, processes and key codes.
#pragma once

#include <cstdint>

namespace orvane {

// The window server's identifier of one window.
using WindowIdentifier = std::uint32_t;
// The operating system's identifier of one process.
using ProcessIdentifier = std::int32_t;
// A virtual key code as stored in the preferences.
using StoredKeyCode = std::uint16_t;
// A virtual key code as read from a keyboard event.
using EventKeyCode = std::int64_t;

}  // namespace orvane
