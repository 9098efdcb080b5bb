#include "StandInWindowActivation.h"

#include "WindowDescription.h"

namespace orvane::simulator {

void StandInWindowActivation::activate(const SwitchableWindow& window) {
    transcript_.effect("activate", describeWindow(window));
    if (!desktop_->focusWindow(window.windowIdentifier)) {
        transcript_.effect("desktop", "window " + std::to_string(window.windowIdentifier) +
                                          " is gone; nothing comes forward");
    }
}

}  // namespace orvane::simulator
