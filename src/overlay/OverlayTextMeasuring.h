// Measures one line of text or one symbol the way the renderer will draw it, so that the overlay's
// layout can place runs side by side (a caret after the query, a subtitle after its title).
#pragma once

#include <string_view>

#include "core/Geometry.h"
#include "overlay/OverlayViewData.h"

namespace orvane {

class OverlayTextMeasuring {
  public:
    virtual ~OverlayTextMeasuring() = default;

    // The natural size of the text on one line, untruncated.
    virtual Size textSize(std::string_view text, OverlayTextStyle style,
                          OverlayFontWeight weight) const = 0;
    // The size the symbol takes at the style's font size.
    virtual Size symbolSize(OverlaySymbolName symbol, OverlayTextStyle style) const = 0;
};

}  // namespace orvane
