#include "overlay/OverlayGeometry.h"

#include <algorithm>
#include <cmath>

#include "overlay/SwitcherOverlayCardMetrics.h"

namespace orvane {

OverlayGeometry overlayGeometry(std::ptrdiff_t windowCount, std::optional<double> visibleFrameWidth,
                                SwitcherCardSize cardSize) {
    const auto metrics = SwitcherOverlayCardMetrics::metrics(cardSize);
    // The + spacing makes n cards' width (n x card + (n - 1) x spacing + padding) divide exactly.
    const double availableWidth =
        visibleFrameWidth ? *visibleFrameWidth * 0.9 - 2 * overlayPadding + overlayCardSpacing
                          : 1124;
    const double quotient = std::trunc(availableWidth / (metrics.cardWidth + overlayCardSpacing));
    const std::ptrdiff_t effectiveCount = std::max<std::ptrdiff_t>(windowCount, 1);
    // Compared as doubles first so that a huge or NaN width never reaches an integer conversion.
    std::ptrdiff_t columnCount = 1;
    if (quotient >= static_cast<double>(effectiveCount)) {
        columnCount = effectiveCount;
    } else if (quotient >= 1) {
        columnCount = static_cast<std::ptrdiff_t>(quotient);
    }
    const std::ptrdiff_t rowCount = (effectiveCount + columnCount - 1) / columnCount;
    const auto extent = [](std::ptrdiff_t count, double length) {
        return length * static_cast<double>(count) +
               overlayCardSpacing * static_cast<double>(count - 1) + 2 * overlayPadding;
    };
    return {columnCount, extent(columnCount, metrics.cardWidth),
            extent(rowCount, metrics.cardHeight)};
}

}  // namespace orvane
