#include <gtest/gtest.h>

#include <memory>

#include "overlay/FixedAdvanceOverlayTextMeasurer.h"
#include "overlay/OverlayTextRenderer.h"
#include "overlay/OverlayViewBuilder.h"

namespace orvane {
namespace {

TEST(OverlayTextRenderer, WritesOneLinePerElementWithRolesAndRoundedFrames) {
    OverlayShape badge;
    badge.frame = {{1.25, -0.04}, {62.2, 18}};
    badge.kind = OverlayShapeKind::capsule;
    badge.fill = OverlayPaint{OverlayColorRole::accent, 0.28};
    badge.stroke = OverlayStroke{{OverlayColorRole::separator, 1.0}, 2.5};
    OverlayImage thumbnail;
    thumbnail.frame = {{30, 58.25}, {180, 56.5}};
    thumbnail.image.description = "window 7";
    thumbnail.clipCornerRadius = 6;
    thumbnail.opacity = 0.55;
    thumbnail.shadow = OverlayShadow{{OverlayColorRole::black, 0.33}, 2, {}};
    OverlaySymbol glyph;
    glyph.symbol = OverlaySymbolName::minimizedWindow;
    glyph.style = OverlayTextStyle::caption2;
    glyph.color = OverlayColorRole::secondary;
    glyph.tooltip = "Minimized";
    OverlayText title{{{64, 82}, {46.8, 16}},    "Safari",
                      OverlayTextStyle::caption, OverlayFontWeight::semibold,
                      OverlayColorRole::primary, OverlayTruncation::middle};

    const OverlayViewData data{{640, 132},
                               {{OverlayPart::modeBadge, "", badge},
                                {OverlayPart::thumbnail, "7", thumbnail},
                                {OverlayPart::minimizedGlyph, "7", glyph},
                                {OverlayPart::rowTitle, "a", title}}};
    EXPECT_EQ(OverlayTextRenderer::render(data),
              "panel 640x132\n"
              "modeBadge shape 1.3,0 62.2x18 capsule fill accent opacity 28% stroke separator "
              "width 2.5\n"
              "thumbnail #7 image 30,58.3 180x56.5 \"window 7\" clip 6 opacity 55% shadow black "
              "opacity 33% blur 2\n"
              "minimizedGlyph #7 symbol 0,0 0x0 arrow.down.right.square caption2 secondary "
              "tooltip \"Minimized\"\n"
              "rowTitle #a text 64,82 46.8x16 \"Safari\" caption semibold primary middle\n");
}

// The message centred in one card frame; the blur behind the content and the border over it.
TEST(OverlayTextRenderer, RendersABuiltEmptySwitcher) {
    const OverlayViewBuilder builder(
        [](ProcessIdentifier, const std::string&) { return std::nullopt; },
        std::make_shared<FixedAdvanceOverlayTextMeasurer>());
    const SwitcherOverlayViewModel model;
    EXPECT_EQ(
        OverlayTextRenderer::render(builder.build(model, {240, 197})),
        "panel 240x197\n"
        "panelBackground shape 0,0 240x197 roundedRectangle radius 20 material regularBlur\n"
        "noWindowsMessage text 61.5,90.5 117x16 \"No Windows Open\" headline secondary tail\n"
        "panelBorder shape 0,0 240x197 roundedRectangle radius 20 stroke separator width 1\n");
}

}  // namespace
}  // namespace orvane
