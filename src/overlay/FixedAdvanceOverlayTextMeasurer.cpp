#include "overlay/FixedAdvanceOverlayTextMeasurer.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

double lineHeight(OverlayTextStyle style) {
    return std::ceil(FixedAdvanceOverlayTextMeasurer::pointSize(style) * 1.2);
}

}  // namespace

double FixedAdvanceOverlayTextMeasurer::pointSize(OverlayTextStyle style) {
    switch (style) {
        case OverlayTextStyle::headline:
        case OverlayTextStyle::body:
            return 13;
        case OverlayTextStyle::title3:
            return 15;
        case OverlayTextStyle::callout:
            return 12;
        case OverlayTextStyle::caption:
        case OverlayTextStyle::caption2:
            return 10;
    }
    return 13;
}

Size FixedAdvanceOverlayTextMeasurer::textSize(std::string_view text, OverlayTextStyle style,
                                               OverlayFontWeight weight) const {
    // Counting lead bytes counts code points: close enough for an estimate, and exact for ASCII.
    const auto codePoints = std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
    });
    const double advance =
        pointSize(style) * 0.6 * (weight == OverlayFontWeight::semibold ? 1.1 : 1.0);
    return {static_cast<double>(codePoints) * advance, lineHeight(style)};
}

Size FixedAdvanceOverlayTextMeasurer::symbolSize(OverlaySymbolName, OverlayTextStyle style) const {
    return {lineHeight(style), lineHeight(style)};
}

}  // namespace orvane
