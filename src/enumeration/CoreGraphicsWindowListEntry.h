// One window as the window server's window list describes it: who owns it, where it is and how it
// is drawn. The starting point of every enumeration, before the Accessibility tree is consulted.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "core/Geometry.h"
#include "core/Identifiers.h"

namespace orvane {

struct CoreGraphicsWindowListEntry {
    WindowIdentifier windowIdentifier = 0;
    ProcessIdentifier owningProcessIdentifier = 0;
    std::optional<std::string> owningApplicationName;
    // Absent, or empty, when the process lacks the screen recording permission.
    std::optional<std::string> windowTitle;
    Rect bounds;
    // Zero for ordinary application windows; menus, panels and the like sit on other layers.
    std::ptrdiff_t windowLayer = 0;
    double alphaValue = 1.0;
    bool isPresentInOnScreenList = true;

    friend bool operator==(const CoreGraphicsWindowListEntry&,
                           const CoreGraphicsWindowListEntry&) = default;
};

}  // namespace orvane
