// A toolkit-free text measure: every character advances by a fixed share of the style's point
// size. Deterministic, for the simulator and tests, where no font exists.
#pragma once

#include "overlay/OverlayTextMeasuring.h"

namespace orvane {

class FixedAdvanceOverlayTextMeasurer final : public OverlayTextMeasuring {
  public:
    // headline 13, title3 15, body 13, callout 12, caption 10, caption2 10.
    static double pointSize(OverlayTextStyle style);

    // Width: code points x 0.6 x point size, x 1.1 in semibold. Height: the line height,
    // point size x 1.2 rounded up.
    Size textSize(std::string_view text, OverlayTextStyle style,
                  OverlayFontWeight weight) const override;
    // A square of the style's line height.
    Size symbolSize(OverlaySymbolName symbol, OverlayTextStyle style) const override;
};

}  // namespace orvane
