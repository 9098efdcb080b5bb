// The connected screens and the mouse, in global screen coordinates with the origin at the bottom
// left of the primary screen.
#pragma once

#include <optional>
#include <vector>

#include "core/Geometry.h"

namespace orvane {

struct ScreenDescription {
    // The whole screen.
    Rect frame;
    // The screen without menu bar and Dock.
    Rect visibleFrame;
    // Pixels per point.
    double backingScaleFactor = 2.0;

    friend bool operator==(const ScreenDescription&, const ScreenDescription&) = default;
};

class ScreenPort {
  public:
    virtual ~ScreenPort() = default;

    // In the system's order.
    virtual std::vector<ScreenDescription> screens() const = 0;
    // The screen with the keyboard focus; possibly none.
    virtual std::optional<ScreenDescription> mainScreen() const = 0;
    virtual Point mouseLocation() const = 0;
};

}  // namespace orvane
