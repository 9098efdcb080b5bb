// Everything the overlay draws of a launcher session, handed over whole at every change.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/LauncherItem.h"

namespace orvane {

struct LauncherOverlayPresentation {
    std::string modeDisplayName;
    std::string searchPlaceholder;
    std::string searchQuery;
    // The visible results, at most eight.
    std::vector<LauncherItem> items;
    std::ptrdiff_t selectedIndex = 0;

    friend bool operator==(const LauncherOverlayPresentation&,
                           const LauncherOverlayPresentation&) = default;
};

}  // namespace orvane
