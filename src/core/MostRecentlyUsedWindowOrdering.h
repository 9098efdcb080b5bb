// Puts windows in most-recently-used order, learning from focus events and from activations.
#pragma once

#include <vector>

#include "core/SwitchableWindow.h"

namespace orvane {

class MostRecentlyUsedWindowOrdering {
  public:
    virtual ~MostRecentlyUsedWindowOrdering() = default;

    // Starts the focus event source; called once at launch.
    virtual void startTracking() = 0;
    // Stops the focus event source; called at termination.
    virtual void stopTracking() = 0;
    // The same windows, most recently used first, with `lastFocusedTimestamp` filled in. Also
    // learns the windows and reconciles its stack, so callers pass a fresh enumeration.
    virtual std::vector<SwitchableWindow> orderedByRecency(
        std::vector<SwitchableWindow> windows) = 0;
    // Puts the window on top of the stack now, without waiting for a focus notification.
    virtual void recordImmediateFocus(const SwitchableWindow& window) = 0;
};

}  // namespace orvane
