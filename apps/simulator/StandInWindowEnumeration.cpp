#include "StandInWindowEnumeration.h"

#include <string>

namespace orvane::simulator {

std::vector<SwitchableWindow> StandInWindowEnumeration::enumerateSwitchableWindows() {
    auto windows = desktop_->windows;
    std::string identifiers;
    for (const auto& window : windows) {
        identifiers += identifiers.empty() ? "" : ", ";
        identifiers += std::to_string(window.windowIdentifier);
    }
    transcript_.effect("enumerate",
                       std::to_string(windows.size()) + " windows [" + identifiers + "]");
    return windows;
}

}  // namespace orvane::simulator
