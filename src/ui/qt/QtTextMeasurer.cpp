#include "ui/qt/QtTextMeasurer.h"

#include <QFontMetricsF>
#include <QString>

#include "ui/qt/QtOverlayStyle.h"

namespace orvane {

Size QtTextMeasurer::textSize(std::string_view text, OverlayTextStyle style,
                              OverlayFontWeight weight) const {
    const QFontMetricsF metrics(QtOverlayStyle::font(style, weight));
    const auto words = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    return {metrics.horizontalAdvance(words), metrics.height()};
}

Size QtTextMeasurer::symbolSize(OverlaySymbolName, OverlayTextStyle style) const {
    // Symbols are drawn square, one line of the style high.
    const QFontMetricsF metrics(QtOverlayStyle::font(style, OverlayFontWeight::regular));
    const double side = metrics.height();
    return {side, side};
}

}  // namespace orvane
