// The attributes of one window in another process's Accessibility tree, read once per enumeration
// so that pairing it with the window list needs no further calls into that process.
#pragma once

#include <optional>
#include <string>

#include "core/Geometry.h"

namespace orvane {

// Handle is whatever the enumeration later activates the window through; the pairing never
// looks at it, so tests can use a plain number.
template <typename Handle>
struct AccessibilityWindowSnapshot {
    Handle elementHandle{};
    std::optional<std::string> windowTitle;
    // Absent when "AXPosition" or "AXSize" could not be read.
    std::optional<Rect> frame;
    std::optional<std::string> subrole;
    std::optional<bool> isMinimized;

    friend bool operator==(const AccessibilityWindowSnapshot&,
                           const AccessibilityWindowSnapshot&) = default;
};

}  // namespace orvane
