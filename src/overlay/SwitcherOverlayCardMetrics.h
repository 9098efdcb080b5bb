// The exact measures of one switcher card for a card size: the card, its thumbnail area and the
// two application icon sides. Pure value record.
#pragma once

#include "preferences/SwitcherPreferences.h"

namespace orvane {

struct SwitcherOverlayCardMetrics {
    double cardWidth = 0;
    double cardHeight = 0;
    double thumbnailWidth = 0;
    double thumbnailHeight = 0;
    double fallbackApplicationIconSideLength = 0;
    double applicationIconBadgeSideLength = 0;

    // Derived from the card width and badge side of the size, rounding halves away from zero.
    static SwitcherOverlayCardMetrics metrics(SwitcherCardSize cardSize);

    friend bool operator==(const SwitcherOverlayCardMetrics&,
                           const SwitcherOverlayCardMetrics&) = default;
};

}  // namespace orvane
