#include "ui/qt/QtTextMeasurer.h"

#include <QFontMetricsF>
#include <QString>

#include "ui/qt/QtOverlayStyle.h"

namespace orvane {

namespace {

constexpr std::size_t maximumCachedTexts = 2048;

}  // namespace

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
    if (const auto found = sizes_.find(std::make_tuple(text, style, weight));
        found != sizes_.end()) {
        return found->second;
    }
    const auto& fontMetrics = metrics(style, weight);
    const auto words = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    const Size size{fontMetrics.horizontalAdvance(words), fontMetrics.height()};
    // Titles come and go all day; the cache stays small.
    if (sizes_.size() >= maximumCachedTexts) {
        sizes_.clear();
    }
    sizes_.emplace(TextKey{text, style, weight}, size);
    return size;
}

Size QtTextMeasurer::symbolSize(OverlaySymbolName, OverlayTextStyle style) const {
    // Symbols are drawn square, one line of the style high.
    const double side = metrics(style, OverlayFontWeight::regular).height();
    return {side, side};
}

}  // namespace orvane
