// The one floating panel of the overlay: borderless, transparent, above everything, on every
// Space, and never the key or main window, so the focused application keeps the keyboard.
#pragma once

#include "core/Geometry.h"

namespace orvane {

class OverlayPanelPort {
  public:
    virtual ~OverlayPanelPort() = default;

    virtual void setFrame(const Rect& frame, bool display) = 0;
    // Shows the panel without activating the program.
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
};

}  // namespace orvane
