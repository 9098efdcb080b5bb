#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "overlay/FixedAdvanceOverlayTextMeasurer.h"
#include "overlay/OverlayGeometry.h"
#include "overlay/OverlayViewBuilder.h"

namespace orvane {
namespace {

// Character advances of the fixed measurer: caption 6 (line 12), title3 9 (18), body 7.8 (16).
constexpr ProcessIdentifier quitProcess = 99;
const ImageHandle notesIcon{1, 64, 64, "Notes icon"};

// Within rounding: the fixed measurer's advances are not exact binary fractions.
testing::AssertionResult sameFrame(const Rect& actual, const Rect& expected) {
    const auto close = [](double left, double right) { return std::abs(left - right) < 1e-9; };
    if (close(actual.minX(), expected.minX()) && close(actual.minY(), expected.minY()) &&
        close(actual.width(), expected.width()) && close(actual.height(), expected.height())) {
        return testing::AssertionSuccess();
    }
    const auto text = [](const Rect& frame) {
        return testing::PrintToString(
            std::vector{frame.minX(), frame.minY(), frame.width(), frame.height()});
    };
    return testing::AssertionFailure() << text(actual) << " is not " << text(expected);
}

SwitchableWindow window(WindowIdentifier identifier, std::string title, bool minimized = false) {
    SwitchableWindow made;
    made.windowIdentifier = identifier;
    made.owningProcessIdentifier = static_cast<ProcessIdentifier>(identifier);
    made.owningApplicationName = "Notes";
    made.windowTitle = std::move(title);
    made.isMinimized = minimized;
    return made;
}

LauncherItem item(std::string identifier, std::string title,
                  std::optional<std::string> subtitle = std::nullopt) {
    return {identifier, std::move(title), std::move(subtitle), std::nullopt};
}

class OverlayViewBuilderTest : public testing::Test {
  protected:
    OverlayViewBuilder builder{[this](ProcessIdentifier process, const std::string& name) {
                                   resolved.push_back(name + ":" + std::to_string(process));
                                   return process == quitProcess ? std::nullopt
                                                                 : std::optional(notesIcon);
                               },
                               std::make_shared<FixedAdvanceOverlayTextMeasurer>()};
    SwitcherOverlayViewModel model;
    std::vector<std::string> resolved;
    OverlayViewData data;

    // Sizes the panel and the column count as the coordinator does on a screen of that width.
    void showSwitcher(std::vector<SwitchableWindow> windows, double screenWidth = 1440) {
        const auto geometry = overlayGeometry(static_cast<std::ptrdiff_t>(windows.size()),
                                              screenWidth, model.cardSize.value());
        model.columnCount.set(geometry.columnCount);
        model.windows.set(std::move(windows));
        data = builder.build(model, {geometry.panelWidth, geometry.panelHeight});
    }
    void showLauncher(std::vector<LauncherItem> items, std::string query = "",
                      std::ptrdiff_t selected = 0) {
        const auto count = static_cast<double>(items.size());
        model.launcherPresentation.replace(LauncherOverlayPresentation{
            "Windows", "Search windows", std::move(query), std::move(items), selected});
        data = builder.build(model, {640, count == 0 ? 160 : count * 44 + 88});
    }

    std::vector<const OverlayElement*> all(OverlayPart part) const {
        std::vector<const OverlayElement*> found;
        for (const auto& element : data.elements) {
            if (element.part == part) {
                found.push_back(&element);
            }
        }
        return found;
    }
    template <typename Drawn = OverlayShape>
    const Drawn& only(OverlayPart part, const std::string& key = "") const {
        for (const auto& element : data.elements) {
            if (element.part == part && element.key == key) {
                return std::get<Drawn>(element.content);
            }
        }
        throw std::runtime_error("no such element");
    }
    std::vector<Point> cardOrigins() const {
        std::vector<Point> origins;
        for (const auto* card : all(OverlayPart::cardBackground)) {
            origins.push_back(card->frame().origin);
        }
        return origins;
    }
};

// A grid of two draws the same picture as the stack; with spare columns the row centres.
TEST_F(OverlayViewBuilderTest, RowStacksAndCentresWhereAGridKeepsItsColumns) {
    using Points = std::vector<Point>;
    // An 800 wide screen holds 3 medium columns.
    showSwitcher({window(1, "a"), window(2, "b"), window(3, "c")}, 800);
    EXPECT_EQ(cardOrigins(), (Points{{20, 20}, {232, 20}, {444, 20}}));
    showSwitcher({window(1, "a"), window(2, "b"), window(3, "c"), window(4, "d")}, 800);
    EXPECT_EQ(cardOrigins(), (Points{{20, 20}, {232, 20}, {444, 20}, {20, 189}}));
    for (auto style : {SwitcherOverlayLayoutStyle::row, SwitcherOverlayLayoutStyle::grid}) {
        model.layoutStyle.set(style);
        showSwitcher({window(1, "a"), window(2, "b")});
        EXPECT_EQ(cardOrigins(), (Points{{20, 20}, {232, 20}}));
        model.columnCount.set(4);
        data = builder.build(model, {876, 197});
        const bool row = style == SwitcherOverlayLayoutStyle::row;
        EXPECT_EQ(cardOrigins(),
                  (row ? Points{{232, 20}, {444, 20}} : Points{{20, 20}, {232, 20}}));
    }
}

TEST_F(OverlayViewBuilderTest, SelectedWindowIsFilledBorderedAndCaptionedInPrimary) {
    for (const std::ptrdiff_t index : {-1, 2}) {
        model.selectedIndex.set(index);
        showSwitcher({window(1, "a"), window(2, "b")});
        for (const auto* card : all(OverlayPart::cardBackground)) {
            EXPECT_EQ(std::get<OverlayShape>(card->content).fill, OverlayPaint{}) << index;
        }
    }
    model.selectedIndex.set(1);
    showSwitcher({window(1, "a"), window(2, "b")});
    EXPECT_EQ(only(OverlayPart::cardBackground, "2").fill,
              (OverlayPaint{OverlayColorRole::accent, 0.28}));
    EXPECT_EQ(only(OverlayPart::cardBorder, "2").stroke,
              (OverlayStroke{{OverlayColorRole::accent, 1.0}, 2.5}));
    EXPECT_EQ(only<OverlayText>(OverlayPart::caption, "2").color, OverlayColorRole::primary);
    EXPECT_EQ(only(OverlayPart::cardBackground, "1").fill, OverlayPaint{});
    EXPECT_EQ(only(OverlayPart::cardBorder, "1").stroke, (OverlayStroke{{}, 2.5}));
    EXPECT_EQ(only<OverlayText>(OverlayPart::caption, "1").color, OverlayColorRole::secondary);
}

TEST_F(OverlayViewBuilderTest,
       CaptionShowsTheApplicationNameForAnEmptyTitleCentredUnderThePreview) {
    showSwitcher({window(7, "")});
    const auto& caption = only<OverlayText>(OverlayPart::caption, "7");
    EXPECT_EQ(caption.text, "Notes");
    EXPECT_EQ(caption.truncation, OverlayTruncation::tail);
    EXPECT_TRUE(sameFrame(caption.frame, {{105, 153}, {30, 12}}));
    EXPECT_TRUE(all(OverlayPart::minimizedGlyph).empty());
}

TEST_F(OverlayViewBuilderTest, WithoutThumbnailTheResolvedIconStandsCentredAtFallbackSize) {
    showSwitcher({window(7, "a"), window(quitProcess, "b")});
    EXPECT_EQ(resolved, (std::vector<std::string>{"Notes:7", "Notes:99"}));
    const auto& icon = only<OverlayImage>(OverlayPart::cardIcon, "7");
    EXPECT_EQ(icon.image, notesIcon);
    EXPECT_TRUE(sameFrame(icon.frame, {{77.5, 44}, {85, 85}}));
    // A process that has quit gives the generic window symbol, described by the application.
    const auto& fallback = only<OverlaySymbol>(OverlayPart::cardIcon, "99");
    EXPECT_EQ(platformSymbolName(fallback.symbol), "macwindow");
    EXPECT_EQ(fallback.accessibilityDescription, "Notes");
    EXPECT_TRUE(all(OverlayPart::badge).empty());
    showSwitcher({window(7, "a")});
    EXPECT_EQ(resolved.size(), 3u);
}

TEST_F(OverlayViewBuilderTest, ThumbnailKeepsItsAspectRatioCentredAndCarriesTheBadge) {
    model.thumbnailsByWindowIdentifier.set(
        {{7, ImageHandle{2, 90, 113, "narrow"}}, {8, ImageHandle{3, 360, 113, "wide"}}});
    showSwitcher({window(7, "a"), window(8, "b")});
    const auto& narrow = only<OverlayImage>(OverlayPart::thumbnail, "7");
    EXPECT_TRUE(sameFrame(narrow.frame, {{75, 30}, {90, 113}}));
    EXPECT_EQ(narrow.clipCornerRadius, 6);
    EXPECT_TRUE(sameFrame(only<OverlayImage>(OverlayPart::thumbnail, "8").frame,
                          {{242, 58.25}, {180, 56.5}}));
    const auto& badge = only<OverlayImage>(OverlayPart::badge, "7");
    EXPECT_TRUE(sameFrame(badge.frame, {{188, 121}, {26, 26}}));
    EXPECT_EQ(badge.shadow, (OverlayShadow{{OverlayColorRole::black, 0.33}, 2, {0, 0}}));
    EXPECT_TRUE(all(OverlayPart::cardIcon).empty());
}

TEST_F(OverlayViewBuilderTest, MinimizedCardDimsPreviewAndBadgeButNotTheCaption) {
    model.thumbnailsByWindowIdentifier.set({{8, ImageHandle{3, 16, 10, "thumb"}}});
    showSwitcher({window(7, "Notes", true), window(8, "b", true)});
    EXPECT_EQ(only<OverlayImage>(OverlayPart::cardIcon, "7").opacity, 0.55);
    EXPECT_EQ(only<OverlayImage>(OverlayPart::thumbnail, "8").opacity, 0.55);
    EXPECT_EQ(only<OverlayImage>(OverlayPart::badge, "8").opacity, 0.55);
    const auto& glyph = only<OverlaySymbol>(OverlayPart::minimizedGlyph, "7");
    EXPECT_EQ(platformSymbolName(glyph.symbol), "arrow.down.right.square");
    EXPECT_EQ(glyph.tooltip, "Minimized");
    EXPECT_EQ(glyph.opacity, 1.0);
    // Glyph, spacing 4 and text centred together: 12 + 4 + 30 in 180.
    EXPECT_TRUE(sameFrame(glyph.frame, {{97, 153}, {12, 12}}));
    EXPECT_DOUBLE_EQ(only<OverlayText>(OverlayPart::caption, "7").frame.minX(), 113);
}

TEST_F(OverlayViewBuilderTest, LauncherReplacesTheCardsEvenWithWindowsListed) {
    model.windows.set({window(1, "a")});
    showLauncher({item("a", "Safari")});
    EXPECT_TRUE(all(OverlayPart::cardBackground).empty());
    EXPECT_EQ(only<OverlayText>(OverlayPart::rowTitle, "a").text, "Safari");
    EXPECT_EQ(only<OverlayText>(OverlayPart::modeName).weight, OverlayFontWeight::semibold);
    EXPECT_EQ(only<OverlayText>(OverlayPart::modeHint).text, "⌥␣ mode");
    EXPECT_EQ(only(OverlayPart::modeBadge).kind, OverlayShapeKind::capsule);
}

TEST_F(OverlayViewBuilderTest, CaretFollowsTheQueryOrPrecedesThePlaceholder) {
    showLauncher({});
    EXPECT_TRUE(all(OverlayPart::query).empty());
    const auto& caret = only(OverlayPart::caret);
    EXPECT_TRUE(sameFrame(caret.frame, {{57, 33}, {2, 18}}));
    EXPECT_EQ(caret.fill, (OverlayPaint{OverlayColorRole::accent, 1.0}));
    const auto& placeholder = only<OverlayText>(OverlayPart::placeholder);
    EXPECT_EQ(placeholder.text, "Search windows");
    EXPECT_EQ(placeholder.color, OverlayColorRole::tertiary);
    EXPECT_DOUBLE_EQ(placeholder.frame.minX(), caret.frame.maxX() + 4);

    showLauncher({}, "abc");
    EXPECT_TRUE(all(OverlayPart::placeholder).empty());
    const auto& query = only<OverlayText>(OverlayPart::query);
    EXPECT_TRUE(sameFrame(query.frame, {{56, 33}, {27, 18}}));
    EXPECT_EQ(query.truncation, OverlayTruncation::head);
    EXPECT_DOUBLE_EQ(only(OverlayPart::caret).frame.minX(), 84);

    showLauncher({}, std::string(100, 'q'));
    EXPECT_DOUBLE_EQ(only(OverlayPart::caret).frame.maxX(),
                     only(OverlayPart::modeBadge).frame.minX() - 10 - 12 - 10);
    EXPECT_TRUE(sameFrame(only(OverlayPart::modeBadge).frame, {{497.8, 33}, {62.2, 18}}));
}

TEST_F(OverlayViewBuilderTest, OnlyTheSelectedRowIsFilledAndShowsReturn) {
    for (const std::ptrdiff_t selected : {0, 1}) {
        showLauncher({item("a", "Safari"), item("b", "Mail")}, "", selected);
        const auto returns = all(OverlayPart::returnSymbol);
        ASSERT_EQ(returns.size(), 1u);
        EXPECT_EQ(returns.front()->key, selected == 0 ? "a" : "b");
        EXPECT_TRUE(
            sameFrame(returns.front()->frame(), {{598, 70 + 44.0 * selected + 14}, {12, 12}}));
        EXPECT_EQ(only(OverlayPart::rowBackground, selected == 0 ? "a" : "b").fill,
                  (OverlayPaint{OverlayColorRole::selection, 1.0}));
        EXPECT_EQ(only(OverlayPart::rowBackground, selected == 0 ? "b" : "a").fill, OverlayPaint{});
    }
}

TEST_F(OverlayViewBuilderTest, SubtitleStandsRightAfterTheTitleAndRowsWithoutOneEndAtTheTitle) {
    const ImageHandle safari{5, 32, 32, "Safari icon"};
    showLauncher({{"a", "Safari", "/Applications", safari}, item("b", "Mail")});
    EXPECT_TRUE(
        sameFrame(only<OverlayText>(OverlayPart::rowTitle, "a").frame, {{64, 82}, {46.8, 16}}));
    const auto& subtitle = only<OverlayText>(OverlayPart::rowSubtitle, "a");
    EXPECT_DOUBLE_EQ(subtitle.frame.minX(), 64 + 46.8 + 10);
    EXPECT_EQ(subtitle.truncation, OverlayTruncation::middle);
    EXPECT_TRUE(
        sameFrame(only<OverlayImage>(OverlayPart::rowIcon, "a").frame, {{30, 78}, {24, 24}}));
    EXPECT_TRUE(only<OverlayImage>(OverlayPart::rowIcon, "a").highQualityInterpolation);
    EXPECT_EQ(platformSymbolName(only<OverlaySymbol>(OverlayPart::rowIcon, "b").symbol),
              "app.dashed");
    EXPECT_EQ(all(OverlayPart::rowSubtitle).size(), 1u);
}

TEST_F(OverlayViewBuilderTest, LongTitleAndSubtitleShareWhatTheRowLeaves) {
    // Texts from 64 to 600 (padding 10, spacing 10 before the flexible space), 10 between them;
    // the selected row also leaves the return symbol and its spacing.
    showLauncher({item("a", "Mail", std::string(100, 's')),
                  item("b", std::string(100, 't'), "short path"),
                  item("c", std::string(100, 't'), std::string(100, 's'))});
    EXPECT_DOUBLE_EQ(only<OverlayText>(OverlayPart::rowSubtitle, "a").frame.minX(), 64 + 31.2 + 10);
    EXPECT_DOUBLE_EQ(only<OverlayText>(OverlayPart::rowSubtitle, "a").frame.maxX(),
                     only<OverlaySymbol>(OverlayPart::returnSymbol, "a").frame.minX() - 20);
    EXPECT_DOUBLE_EQ(only<OverlayText>(OverlayPart::rowTitle, "b").frame.width(), 526 - 72);
    EXPECT_DOUBLE_EQ(only<OverlayText>(OverlayPart::rowSubtitle, "b").frame.maxX(), 600);
    EXPECT_DOUBLE_EQ(only<OverlayText>(OverlayPart::rowTitle, "c").frame.width(), 263);
    EXPECT_DOUBLE_EQ(only<OverlayText>(OverlayPart::rowSubtitle, "c").frame.width(), 263);
}

TEST_F(OverlayViewBuilderTest, LauncherContentFillsThePanelsTheCoordinatorSizes) {
    showLauncher({});  // 640 x 160: search row, spacing 4, empty state 72
    EXPECT_TRUE(
        sameFrame(only<OverlaySymbol>(OverlayPart::searchSymbol).frame, {{28, 33}, {18, 18}}));
    EXPECT_DOUBLE_EQ(only<OverlaySymbol>(OverlayPart::noMatchesSymbol).frame.minY(), 68 + 18);
    const auto& message = only<OverlayText>(OverlayPart::noMatchesMessage);
    EXPECT_EQ(message.text, "No Matches");
    EXPECT_DOUBLE_EQ(message.frame.maxY(), 140 - 18);
    for (const std::size_t count : {1u, 8u}) {  // 640 x 132 and 640 x 440
        showLauncher(std::vector<LauncherItem>(count, item("a", "A")));
        const auto rows = all(OverlayPart::rowBackground);
        ASSERT_EQ(rows.size(), count);
        EXPECT_TRUE(sameFrame(rows.front()->frame(), {{20, 70}, {600, 40}}));
        EXPECT_DOUBLE_EQ(rows.back()->frame().maxY(), data.panelSize.height - 22);
    }
}

}  // namespace
}  // namespace orvane
