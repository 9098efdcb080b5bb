#include "ui/qt/QtTextMeasurer.h"

#include <QFontMetricsF>
#include <QString>

#include "ui/qt/QtOverlayStyle.h"

namespace orvane {

const QFontMetricsF& QtTextMeasurer::metrics(OverlayTextStyle style,
                                             OverlayFontWeight weight) const {
    const auto key = std::make_pair(style, weight);
    auto found = metrics_.find(key);
    if (found == metrics_.end()) {
        found = metrics_.emplace(key, QFontMetricsF(QtOverlayStyle::font(style, weight))).first;
    }
    return found->second;
}

Size QtTextMeasurer::textSize(std::string_view text, OverlayTextStyle style,
                              OverlayFontWeight weight) const {
    const auto& fontMetrics = metrics(style, weight);
    const auto words = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    return {fontMetrics.horizontalAdvance(words), fontMetrics.height()};
}

Size QtTextMeasurer::symbolSize(OverlaySymbolName, OverlayTextStyle style) const {
    // Symbols are drawn square, one line of the style high.
    const double side = metrics(style, OverlayFontWeight::regular).height();
    return {side, side};
}

}  // namespace orvane
