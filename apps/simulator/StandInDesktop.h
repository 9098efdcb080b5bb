// The desktop as the first simulator knows it: the scenario's windows in the order listed and the
// frontmost process. Later simulators replace it with the full simulated desktop.
#pragma once

#include <optional>
#include <vector>

#include "core/SwitchableWindow.h"

namespace orvane::simulator {

struct StandInDesktop {
    std::vector<SwitchableWindow> windows;
    std::optional<ProcessIdentifier> frontmostProcessIdentifier;
};

}  // namespace orvane::simulator
