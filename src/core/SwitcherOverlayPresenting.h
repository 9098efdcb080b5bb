// The one floating overlay panel, for switcher cards and for the launcher's search line.
#pragma once

#include <cstddef>
#include <vector>

#include "core/LauncherOverlayPresentation.h"
#include "core/SwitchableWindow.h"

namespace orvane {

class SwitcherOverlayPresenting {
  public:
    virtual ~SwitcherOverlayPresenting() = default;

    // The panel is on screen, for the switcher or the launcher.
    virtual bool isPresented() const = 0;
    // Shows the switcher cards; the index is clamped into the list.
    virtual void presentSwitcher(const std::vector<SwitchableWindow>& windows,
                                 std::ptrdiff_t selectedIndex) = 0;
    // Moves the highlight; the index is clamped; no new layout.
    virtual void updateSelection(std::ptrdiff_t selectedIndex) = 0;
    // Shows or refreshes the launcher in the same panel; called again for every change.
    virtual void presentLauncher(const LauncherOverlayPresentation& presentation) = 0;
    // Cancels the thumbnail work and hides the panel; no effect unless presented.
    virtual void dismiss() = 0;
};

}  // namespace orvane
