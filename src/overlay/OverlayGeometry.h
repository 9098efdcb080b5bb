// The switcher panel's size on a screen: how many card columns fit and how large the panel is
// for a window count. Pure arithmetic.
#pragma once

#include <cstddef>
#include <optional>

#include "preferences/SwitcherPreferences.h"

namespace orvane {

// Between cards, in both directions.
inline constexpr double overlayCardSpacing = 12;
// Around the overlay's content, on each side.
inline constexpr double overlayPadding = 20;

struct OverlayGeometry {
    // At least 1.
    std::ptrdiff_t columnCount = 1;
    double panelWidth = 0;
    double panelHeight = 0;

    friend bool operator==(const OverlayGeometry&, const OverlayGeometry&) = default;
};

// Fits the columns into 90 % of `visibleFrameWidth` (a 1280 wide screen when none is known).
// A count below 1 is laid out as one card. The height is never limited by the screen.
OverlayGeometry overlayGeometry(std::ptrdiff_t windowCount, std::optional<double> visibleFrameWidth,
                                SwitcherCardSize cardSize);

}  // namespace orvane
