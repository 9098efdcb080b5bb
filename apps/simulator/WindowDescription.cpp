#include "WindowDescription.h"

namespace orvane::simulator {

std::string describeWindow(const SwitchableWindow& window) {
    std::string text = std::to_string(window.windowIdentifier) + " \"" +
                       window.owningApplicationName + "\" \"" + window.windowTitle + "\" pid " +
                       std::to_string(window.owningProcessIdentifier);
    if (window.isMinimized) {
        text += " minimized";
    }
    return text;
}

}  // namespace orvane::simulator
