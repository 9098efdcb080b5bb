// Measures the overlay's texts and symbols with the fonts the Qt renderer draws them in.
#pragma once

#include <QFontMetricsF>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "overlay/OverlayTextMeasuring.h"

namespace orvane {

class QtTextMeasurer final : public OverlayTextMeasuring {
  public:
    Size textSize(std::string_view text, OverlayTextStyle style,
                  OverlayFontWeight weight) const override;
    Size symbolSize(OverlaySymbolName symbol, OverlayTextStyle style) const override;

  private:
    // Font metrics are dear to make and asked for at every card; one per style and weight.
    const QFontMetricsF& metrics(OverlayTextStyle style, OverlayFontWeight weight) const;
    mutable std::map<std::pair<OverlayTextStyle, OverlayFontWeight>, QFontMetricsF> metrics_;
    // Shaping a text is what measuring costs, and the titles of one gesture are mostly those of
    // the last: each text is measured once.
    using TextKey = std::tuple<std::string, OverlayTextStyle, OverlayFontWeight>;
    mutable std::map<TextKey, Size, std::less<>> sizes_;
};

}  // namespace orvane
