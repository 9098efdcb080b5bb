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

std::string describeWindowList(const std::vector<SwitchableWindow>& windows) {
    std::string identifiers;
    for (const auto& window : windows) {
        identifiers += identifiers.empty() ? "" : ", ";
        identifiers += std::to_string(window.windowIdentifier);
    }
    return std::to_string(windows.size()) + " windows [" + identifiers + "]";
}

}  // namespace orvane::simulator
