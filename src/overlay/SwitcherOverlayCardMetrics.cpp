#include "overlay/SwitcherOverlayCardMetrics.h"

#include <cmath>

namespace orvane {

namespace {

struct BaseMeasures {
    double cardWidth;
    double applicationIconBadgeSideLength;
};

BaseMeasures baseMeasures(SwitcherCardSize cardSize) {
    switch (cardSize) {
        case SwitcherCardSize::small:
            return {160, 22};
        case SwitcherCardSize::medium:
            return {200, 26};
        case SwitcherCardSize::large:
            return {260, 30};
    }
    return {200, 26};
}

}  // namespace

SwitcherOverlayCardMetrics SwitcherOverlayCardMetrics::metrics(SwitcherCardSize cardSize) {
    const auto base = baseMeasures(cardSize);
    // The card's inner padding of 10 on each side.
    const double thumbnailWidth = base.cardWidth - 20;
    // std::round takes halves away from zero: 112.5 gives 113, where banker's rounding gives 112.
    const double thumbnailHeight = std::round(thumbnailWidth * 0.625);
    return {
        .cardWidth = base.cardWidth,
        // Padding 10 above and below, spacing 8, caption 16.
        .cardHeight = thumbnailHeight + 20 + 8 + 16,
        .thumbnailWidth = thumbnailWidth,
        .thumbnailHeight = thumbnailHeight,
        .fallbackApplicationIconSideLength = std::round(thumbnailHeight * 0.75),
        .applicationIconBadgeSideLength = base.applicationIconBadgeSideLength,
    };
}

}  // namespace orvane
