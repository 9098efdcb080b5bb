// Measures the overlay's texts and symbols with the fonts the Qt renderer draws them in.
#pragma once

#include "overlay/OverlayTextMeasuring.h"

namespace orvane {

class QtTextMeasurer final : public OverlayTextMeasuring {
  public:
    Size textSize(std::string_view text, OverlayTextStyle style,
                  OverlayFontWeight weight) const override;
    Size symbolSize(OverlaySymbolName symbol, OverlayTextStyle style) const override;
};

}  // namespace orvane
