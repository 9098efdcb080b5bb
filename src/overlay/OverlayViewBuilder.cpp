#include "overlay/OverlayViewBuilder.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "overlay/OverlayGeometry.h"
#include "overlay/SwitcherOverlayCardMetrics.h"

namespace orvane {

namespace {

constexpr double panelCornerRadius = 20;
constexpr double cardCornerRadius = 12;
constexpr double cardInnerPadding = 10;
constexpr double previewCaptionSpacing = 8;
constexpr double captionHeight = 16;
constexpr double captionSpacing = 4;
constexpr double thumbnailCornerRadius = 6;
constexpr double badgeOffset = 4;
constexpr double minimizedOpacity = 0.55;

constexpr double launcherWidth = 600;
constexpr double launcherStackSpacing = 4;
constexpr double searchRowHeight = 44;
constexpr double searchRowPadding = 8;
constexpr double searchRowSpacing = 10;
constexpr double caretWidth = 2;
constexpr double caretHeight = 18;
constexpr double caretLeading = 1;
constexpr double placeholderLeading = 4;
constexpr double minimumSearchGap = 12;
constexpr double modeBadgeHorizontalPadding = 8;
constexpr double modeBadgeVerticalPadding = 3;
constexpr double resultRowHeight = 40;
constexpr double resultRowPadding = 10;
constexpr double resultRowSpacing = 10;
constexpr double resultRowCornerRadius = 8;
constexpr double resultIconSide = 24;
constexpr double emptyResultsHeight = 72;
constexpr double emptyResultsSpacing = 4;

constexpr const char* modeHintText = "⌥␣ mode";

Rect centred(Size size, const Rect& area) {
    return {{area.minX() + (area.width() - size.width) / 2,
             area.minY() + (area.height() - size.height) / 2},
            size};
}

// The largest rectangle of the image's aspect ratio inside the area, centred; the whole area
// when the image has no usable size.
Rect fitted(const ImageHandle& image, const Rect& area) {
    if (!(image.pixelWidth > 0) || !(image.pixelHeight > 0)) {
        return area;
    }
    const double scale =
        std::min(area.width() / image.pixelWidth, area.height() / image.pixelHeight);
    return centred({image.pixelWidth * scale, image.pixelHeight * scale}, area);
}

OverlayShape roundedRectangle(const Rect& frame, double cornerRadius) {
    OverlayShape shape;
    shape.frame = frame;
    shape.kind = OverlayShapeKind::roundedRectangle;
    shape.cornerRadius = cornerRadius;
    return shape;
}

// Two texts on one line: each keeps its natural width when both fit; otherwise the narrower
// keeps it if it needs no more than half, and the other takes the rest.
std::pair<double, double> shared(double budget, double first, double second) {
    budget = std::max(budget, 0.0);
    if (first + second <= budget) {
        return {first, second};
    }
    const double half = budget / 2;
    if (first <= half) {
        return {first, budget - first};
    }
    if (second <= half) {
        return {budget - second, second};
    }
    return {half, half};
}

// Appends the elements of one build; holds nothing beyond it.
class ElementWriter {
  public:
    ElementWriter(const OverlayViewBuilder::ApplicationIconResolver& iconResolver,
                  const OverlayTextMeasuring& measurer, std::string modeHint,
                  std::vector<OverlayElement>& elements)
        : iconResolver_(iconResolver),
          measurer_(measurer),
          modeHint_(std::move(modeHint)),
          elements_(elements) {}

    void switcherContent(const SwitcherOverlayViewModel& viewModel, const Rect& area) {
        const auto metrics = SwitcherOverlayCardMetrics::metrics(viewModel.cardSize.value());
        const auto& windows = viewModel.windows.value();
        const Size cardSize{metrics.cardWidth, metrics.cardHeight};
        if (windows.empty()) {
            const Rect frame = centred(cardSize, area);
            text(OverlayPart::noWindowsMessage, {}, "No Windows Open", OverlayTextStyle::headline,
                 OverlayFontWeight::regular, OverlayColorRole::secondary, OverlayTruncation::tail,
                 frame, frame.minX() + frame.width() / 2, true);
            return;
        }
        const auto count = static_cast<std::ptrdiff_t>(windows.size());
        const auto columnCount = viewModel.layoutStyle.value() == SwitcherOverlayLayoutStyle::row &&
                                         viewModel.columnCount.value() >= count
                                     ? count
                                     : std::max<std::ptrdiff_t>(viewModel.columnCount.value(), 1);
        const auto rowCount = (count + columnCount - 1) / columnCount;
        const auto extent = [](std::ptrdiff_t number, double length) {
            return length * static_cast<double>(number) +
                   overlayCardSpacing * static_cast<double>(number - 1);
        };
        // The single row stack and the grid give the same picture for one row, so one placement
        // serves both: columns of the card width, rows from the left, the block centred.
        const Rect block = centred(
            {extent(columnCount, metrics.cardWidth), extent(rowCount, metrics.cardHeight)}, area);
        const auto selected = viewModel.selectedWindow();
        const auto& thumbnails = viewModel.thumbnailsByWindowIdentifier.value();
        for (std::ptrdiff_t index = 0; index < count; ++index) {
            const auto& window = windows[static_cast<std::size_t>(index)];
            const auto thumbnail = thumbnails.find(window.windowIdentifier);
            const Point origin{block.minX() + static_cast<double>(index % columnCount) *
                                                  (metrics.cardWidth + overlayCardSpacing),
                               block.minY() + static_cast<double>(index / columnCount) *
                                                  (metrics.cardHeight + overlayCardSpacing)};
            card(window, thumbnail == thumbnails.end() ? nullptr : &thumbnail->second,
                 selected && selected->windowIdentifier == window.windowIdentifier, metrics,
                 {origin, cardSize});
        }
    }

    void launcher(const LauncherOverlayPresentation& presentation, const Rect& area) {
        const auto rowCount = static_cast<double>(presentation.items.size());
        const double height =
            searchRowHeight + (presentation.items.empty()
                                   ? launcherStackSpacing + emptyResultsHeight
                                   : rowCount * (launcherStackSpacing + resultRowHeight));
        const Rect block = centred({launcherWidth, height}, area);
        searchRow(presentation, {block.origin, {launcherWidth, searchRowHeight}});
        double y = block.minY() + searchRowHeight + launcherStackSpacing;
        if (presentation.items.empty()) {
            emptyResults({{block.minX(), y}, {launcherWidth, emptyResultsHeight}});
            return;
        }
        for (std::size_t index = 0; index < presentation.items.size(); ++index) {
            resultRow(presentation.items[index],
                      static_cast<std::ptrdiff_t>(index) == presentation.selectedIndex,
                      {{block.minX(), y}, {launcherWidth, resultRowHeight}});
            y += resultRowHeight + launcherStackSpacing;
        }
    }

    void shape(OverlayPart part, std::string key, OverlayShape drawn) {
        elements_.push_back({part, std::move(key), std::move(drawn)});
    }

  private:
    void card(const SwitchableWindow& window, const ImageHandle* thumbnail, bool isSelected,
              const SwitcherOverlayCardMetrics& metrics, const Rect& frame) {
        const std::string key = std::to_string(window.windowIdentifier);
        const OverlayColorRole highlight =
            isSelected ? OverlayColorRole::accent : OverlayColorRole::clear;
        auto background = roundedRectangle(frame, cardCornerRadius);
        background.fill = OverlayPaint{highlight, isSelected ? 0.28 : 1.0};
        shape(OverlayPart::cardBackground, key, background);

        const Rect preview{{frame.minX() + cardInnerPadding, frame.minY() + cardInnerPadding},
                           {metrics.thumbnailWidth, metrics.thumbnailHeight}};
        const double opacity = window.isMinimized ? minimizedOpacity : 1.0;
        const auto& icon = iconOf(window);
        if (thumbnail != nullptr) {
            auto& image =
                this->image(OverlayPart::thumbnail, key, *thumbnail, fitted(*thumbnail, preview));
            image.clipCornerRadius = thumbnailCornerRadius;
            image.opacity = opacity;
            // Hangs out of the preview's bottom right corner.
            const double side = metrics.applicationIconBadgeSideLength;
            applicationIcon(
                OverlayPart::badge, key, icon, window.owningApplicationName,
                {{preview.maxX() - side + badgeOffset, preview.maxY() - side + badgeOffset},
                 {side, side}},
                opacity, OverlayShadow{{OverlayColorRole::black, 0.33}, 2, {}});
        } else {
            const double side = metrics.fallbackApplicationIconSideLength;
            applicationIcon(OverlayPart::cardIcon, key, icon, window.owningApplicationName,
                            centred({side, side}, preview), opacity, std::nullopt);
        }

        caption(window, isSelected, key,
                {{preview.minX(), preview.maxY() + previewCaptionSpacing},
                 {metrics.thumbnailWidth, captionHeight}});
        auto border = roundedRectangle(frame, cardCornerRadius);
        border.stroke = OverlayStroke{{highlight, 1.0}, 2.5};
        shape(OverlayPart::cardBorder, key, border);
    }

    void applicationIcon(OverlayPart part, const std::string& key,
                         const std::optional<ImageHandle>& icon, const std::string& applicationName,
                         const Rect& square, double opacity, std::optional<OverlayShadow> shadow) {
        if (icon) {
            auto& image = this->image(part, key, *icon, fitted(*icon, square));
            image.opacity = opacity;
            image.shadow = shadow;
            return;
        }
        auto& fallback = symbol(part, key, OverlaySymbolName::macWindow, OverlayTextStyle::body,
                                OverlayColorRole::primary, square.minX(), square, square.size);
        fallback.opacity = opacity;
        fallback.shadow = shadow;
        fallback.accessibilityDescription = applicationName;
    }

    // Glyph and text centred together in the row; the text gives way to the glyph.
    void caption(const SwitchableWindow& window, bool isSelected, const std::string& key,
                 const Rect& row) {
        const std::string& words =
            window.windowTitle.empty() ? window.owningApplicationName : window.windowTitle;
        const Size glyph = window.isMinimized
                               ? measurer_.symbolSize(OverlaySymbolName::minimizedWindow,
                                                      OverlayTextStyle::caption2)
                               : Size{};
        const double glyphRun = window.isMinimized ? glyph.width + captionSpacing : 0;
        const double textWidth = std::clamp(
            measurer_.textSize(words, OverlayTextStyle::caption, OverlayFontWeight::regular).width,
            0.0, std::max(row.width() - glyphRun, 0.0));
        double x = row.minX() + (row.width() - glyphRun - textWidth) / 2;
        if (window.isMinimized) {
            symbol(OverlayPart::minimizedGlyph, key, OverlaySymbolName::minimizedWindow,
                   OverlayTextStyle::caption2, OverlayColorRole::secondary, x, row, glyph)
                .tooltip = "Minimized";
            x += glyphRun;
        }
        text(OverlayPart::caption, key, words, OverlayTextStyle::caption,
             OverlayFontWeight::regular,
             isSelected ? OverlayColorRole::primary : OverlayColorRole::secondary,
             OverlayTruncation::tail, row, x, false, textWidth);
    }

    void searchRow(const LauncherOverlayPresentation& presentation, const Rect& row) {
        const Size magnifier =
            measurer_.symbolSize(OverlaySymbolName::magnifyingGlass, OverlayTextStyle::title3);
        symbol(OverlayPart::searchSymbol, {}, OverlaySymbolName::magnifyingGlass,
               OverlayTextStyle::title3, OverlayColorRole::secondary, row.minX() + searchRowPadding,
               row, magnifier);

        // From the right edge: the hint, then the mode badge.
        const double hintX =
            row.maxX() - searchRowPadding -
            measurer_.textSize(modeHint_, OverlayTextStyle::caption2, OverlayFontWeight::regular)
                .width;
        const Size name = measurer_.textSize(
            presentation.modeDisplayName, OverlayTextStyle::caption, OverlayFontWeight::semibold);
        const Size badge{name.width + 2 * modeBadgeHorizontalPadding,
                         name.height + 2 * modeBadgeVerticalPadding};
        const double badgeX = hintX - searchRowSpacing - badge.width;

        // The field holds what the spacing, the flexible gap and the badge leave over.
        const double fieldX = row.minX() + searchRowPadding + magnifier.width + searchRowSpacing;
        const double fieldWidth =
            std::max(badgeX - searchRowSpacing - minimumSearchGap - searchRowSpacing - fieldX, 0.0);
        double x = fieldX;
        const bool isQueryEmpty = presentation.searchQuery.empty();
        if (!isQueryEmpty) {
            // Truncated at the head, so that the end of what is being typed stays in view.
            x +=
                text(OverlayPart::query, {}, presentation.searchQuery, OverlayTextStyle::title3,
                     OverlayFontWeight::regular, OverlayColorRole::primary, OverlayTruncation::head,
                     row, x, false, std::max(fieldWidth - caretLeading - caretWidth, 0.0))
                    .frame.width();
        }
        x += caretLeading;
        OverlayShape caret;
        caret.frame =
            centred({caretWidth, caretHeight}, {{x, row.minY()}, {caretWidth, row.height()}});
        caret.fill = OverlayPaint{OverlayColorRole::accent, 1.0};
        shape(OverlayPart::caret, {}, caret);
        x += caretWidth;
        if (isQueryEmpty) {
            x += placeholderLeading;
            text(OverlayPart::placeholder, {}, presentation.searchPlaceholder,
                 OverlayTextStyle::title3, OverlayFontWeight::regular, OverlayColorRole::tertiary,
                 OverlayTruncation::tail, row, x, false,
                 std::max(fieldWidth - caretLeading - caretWidth - placeholderLeading, 0.0));
        }

        const Rect badgeFrame = centred(badge, {{badgeX, row.minY()}, {badge.width, row.height()}});
        OverlayShape capsule;
        capsule.frame = badgeFrame;
        capsule.kind = OverlayShapeKind::capsule;
        capsule.cornerRadius = badge.height / 2;
        capsule.fill = OverlayPaint{OverlayColorRole::quaternary, 1.0};
        shape(OverlayPart::modeBadge, {}, capsule);
        text(OverlayPart::modeName, {}, presentation.modeDisplayName, OverlayTextStyle::caption,
             OverlayFontWeight::semibold, OverlayColorRole::secondary, OverlayTruncation::tail,
             badgeFrame, badgeFrame.minX() + modeBadgeHorizontalPadding, false);
        text(OverlayPart::modeHint, {}, modeHint_, OverlayTextStyle::caption2,
             OverlayFontWeight::regular, OverlayColorRole::tertiary, OverlayTruncation::tail, row,
             hintX, false);
    }

    void resultRow(const LauncherItem& item, bool isSelected, const Rect& row) {
        auto background = roundedRectangle(row, resultRowCornerRadius);
        background.fill =
            OverlayPaint{isSelected ? OverlayColorRole::selection : OverlayColorRole::clear, 1.0};
        shape(OverlayPart::rowBackground, item.identifier, background);
        const Rect icon =
            centred({resultIconSide, resultIconSide},
                    {{row.minX() + resultRowPadding, row.minY()}, {resultIconSide, row.height()}});
        if (item.icon) {
            image(OverlayPart::rowIcon, item.identifier, *item.icon, icon)
                .highQualityInterpolation = true;
        } else {
            symbol(OverlayPart::rowIcon, item.identifier, OverlaySymbolName::appDashed,
                   OverlayTextStyle::body, OverlayColorRole::secondary, icon.minX(), icon,
                   icon.size);
        }

        // The flexible space after the texts may shrink to nothing but keeps its spacing.
        const Size returnSize = isSelected ? measurer_.symbolSize(OverlaySymbolName::returnKey,
                                                                  OverlayTextStyle::caption)
                                           : Size{};
        const double textsX = icon.maxX() + resultRowSpacing;
        const double textsEnd = row.maxX() - resultRowPadding - resultRowSpacing -
                                (isSelected ? returnSize.width + resultRowSpacing : 0);
        const double titleNatural =
            measurer_.textSize(item.title, OverlayTextStyle::body, OverlayFontWeight::regular)
                .width;
        const double subtitleNatural =
            item.subtitle ? measurer_
                                .textSize(*item.subtitle, OverlayTextStyle::callout,
                                          OverlayFontWeight::regular)
                                .width
                          : 0;
        const auto [titleWidth, subtitleWidth] =
            shared(textsEnd - textsX - (item.subtitle ? resultRowSpacing : 0), titleNatural,
                   subtitleNatural);
        text(OverlayPart::rowTitle, item.identifier, item.title, OverlayTextStyle::body,
             OverlayFontWeight::regular, OverlayColorRole::primary, OverlayTruncation::tail, row,
             textsX, false, titleWidth);
        if (item.subtitle) {
            text(OverlayPart::rowSubtitle, item.identifier, *item.subtitle,
                 OverlayTextStyle::callout, OverlayFontWeight::regular, OverlayColorRole::secondary,
                 OverlayTruncation::middle, row, textsX + titleWidth + resultRowSpacing, false,
                 subtitleWidth);
        }
        if (isSelected) {
            symbol(OverlayPart::returnSymbol, item.identifier, OverlaySymbolName::returnKey,
                   OverlayTextStyle::caption, OverlayColorRole::secondary,
                   row.maxX() - resultRowPadding - returnSize.width, row, returnSize);
        }
    }

    void emptyResults(const Rect& frame) {
        const Size magnifier =
            measurer_.symbolSize(OverlaySymbolName::magnifyingGlass, OverlayTextStyle::headline);
        const Size words = measurer_.textSize("No Matches", OverlayTextStyle::headline,
                                              OverlayFontWeight::regular);
        const Rect stack = centred({std::max(magnifier.width, words.width),
                                    magnifier.height + emptyResultsSpacing + words.height},
                                   frame);
        const double middle = stack.minX() + stack.width() / 2;
        const Rect symbolRow{stack.origin, {stack.width(), magnifier.height}};
        symbol(OverlayPart::noMatchesSymbol, {}, OverlaySymbolName::magnifyingGlass,
               OverlayTextStyle::headline, OverlayColorRole::secondary,
               middle - magnifier.width / 2, symbolRow, magnifier);
        text(
            OverlayPart::noMatchesMessage, {}, "No Matches", OverlayTextStyle::headline,
            OverlayFontWeight::regular, OverlayColorRole::secondary, OverlayTruncation::tail,
            {{stack.minX(), symbolRow.maxY() + emptyResultsSpacing}, {stack.width(), words.height}},
            middle, true);
    }

    // A symbol at `x`, centred vertically in the row.
    OverlaySymbol& symbol(OverlayPart part, const std::string& key, OverlaySymbolName name,
                          OverlayTextStyle style, OverlayColorRole color, double x, const Rect& row,
                          Size size) {
        OverlaySymbol drawn;
        drawn.frame = {{x, row.minY() + (row.height() - size.height) / 2}, size};
        drawn.symbol = name;
        drawn.style = style;
        drawn.color = color;
        elements_.push_back({part, key, std::move(drawn)});
        return std::get<OverlaySymbol>(elements_.back().content);
    }

    OverlayImage& image(OverlayPart part, const std::string& key, const ImageHandle& handle,
                        const Rect& frame) {
        OverlayImage drawn;
        drawn.frame = frame;
        drawn.image = handle;
        elements_.push_back({part, key, std::move(drawn)});
        return std::get<OverlayImage>(elements_.back().content);
    }

    // A text at `x` (or centred on `x` when `centredOnX`), centred vertically in the row and no
    // wider than `maximumWidth`, or the row.
    OverlayText& text(OverlayPart part, const std::string& key, std::string words,
                      OverlayTextStyle style, OverlayFontWeight weight, OverlayColorRole color,
                      OverlayTruncation truncation, const Rect& row, double x, bool centredOnX,
                      std::optional<double> maximumWidth = std::nullopt) {
        Size size = measurer_.textSize(words, style, weight);
        size.width = std::clamp(size.width, 0.0, std::max(maximumWidth.value_or(row.width()), 0.0));
        const double left = centredOnX ? x - size.width / 2 : x;
        elements_.push_back(
            {part, key,
             OverlayText{{{left, row.minY() + (row.height() - size.height) / 2}, size},
                         std::move(words),
                         style,
                         weight,
                         color,
                         truncation}});
        return std::get<OverlayText>(elements_.back().content);
    }

    // An application's windows share its icon: asked once per build, not once per card.
    const std::optional<ImageHandle>& iconOf(const SwitchableWindow& window) {
        auto found = icons_.find(window.owningProcessIdentifier);
        if (found == icons_.end()) {
            found = icons_
                        .emplace(window.owningProcessIdentifier,
                                 iconResolver_(window.owningProcessIdentifier,
                                               window.owningApplicationName))
                        .first;
        }
        return found->second;
    }

    const OverlayViewBuilder::ApplicationIconResolver& iconResolver_;
    std::unordered_map<ProcessIdentifier, std::optional<ImageHandle>> icons_;
    const OverlayTextMeasuring& measurer_;
    std::string modeHint_;
    std::vector<OverlayElement>& elements_;
};

}  // namespace

OverlayViewBuilder::OverlayViewBuilder(ApplicationIconResolver iconResolver,
                                       std::shared_ptr<const OverlayTextMeasuring> textMeasurer,
                                       Wording wording)
    : iconResolver_(std::move(iconResolver)),
      textMeasurer_(std::move(textMeasurer)),
      wording_(std::move(wording)) {}

OverlayViewData OverlayViewBuilder::build(const SwitcherOverlayViewModel& viewModel,
                                          Size panelSize) const {
    OverlayViewData data{panelSize, {}};
    const auto& presentation = viewModel.launcherPresentation.value();
    data.elements.reserve(presentation ? 8 + 6 * presentation->items.size()
                                       : 3 + 6 * viewModel.windows.value().size());
    ElementWriter writer(iconResolver_, *textMeasurer_, wording_.apply(modeHintText),
                         data.elements);
    const Rect panel{{0, 0}, panelSize};
    auto background = roundedRectangle(panel, panelCornerRadius);
    background.material = OverlayMaterial::regularBlur;
    writer.shape(OverlayPart::panelBackground, {}, background);
    const Rect content{
        {overlayPadding, overlayPadding},
        {panelSize.width - 2 * overlayPadding, panelSize.height - 2 * overlayPadding}};
    if (presentation) {
        writer.launcher(*presentation, content);
    } else {
        writer.switcherContent(viewModel, content);
    }
    auto border = roundedRectangle(panel, panelCornerRadius);
    border.stroke = OverlayStroke{{OverlayColorRole::separator, 1.0}, 1.0};
    writer.shape(OverlayPart::panelBorder, {}, border);
    return data;
}

}  // namespace orvane
