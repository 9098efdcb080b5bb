#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "overlay/OverlayGeometry.h"

namespace orvane {
namespace {

TEST(OverlayGeometryTest, FitsColumnsIntoNinetyPercentOfTheScreen) {
    constexpr auto small = SwitcherCardSize::small;
    constexpr auto medium = SwitcherCardSize::medium;
    constexpr auto large = SwitcherCardSize::large;
    constexpr auto none = std::nullopt;
    const struct {
        const char* name;
        std::ptrdiff_t windowCount;
        std::optional<double> visibleFrameWidth;
        SwitcherCardSize cardSize;
        OverlayGeometry expected;
    } cases[] = {
        // 1268 / 212 = 5.98 is cut to 5; two rows.
        {"seven on 1440", 7, 1440.0, medium, {5, 1088, 366}},
        // Without a screen the width is that of 1280: 1124 / 272 = 4.13.
        {"ten without screen", 10, none, large, {4, 1116, 646}},
        {"no windows", 0, 1440.0, medium, {1, 240, 197}},
        {"negative count", -4, none, small, {1, 200, 172}},
        {"too narrow for one card", 3, 100.0, medium, {1, 240, 535}},
        {"exactly maximum columns", 5, 1440.0, medium, {5, 1088, 197}},
        {"one more than maximum", 6, 1440.0, medium, {5, 1088, 366}},
        {"fewer windows than columns", 2, 1440.0, small, {2, 372, 172}},
        {"small cards wrap at seven", 20, 1440.0, small, {7, 1232, 460}},
        // 1240 x 0.9 is exactly four large cards with spacing and padding; a point less is not.
        {"exact fit", 4, 1240.0, large, {4, 1116, 234}},
        {"just short of fit", 4, 1239.0, large, {3, 844, 440}},
        {"infinite width", 3, std::numeric_limits<double>::infinity(), medium, {3, 664, 197}},
        {"not a number width", 3, std::numeric_limits<double>::quiet_NaN(), medium, {1, 240, 535}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(overlayGeometry(each.windowCount, each.visibleFrameWidth, each.cardSize),
                  each.expected);
    }
}

}  // namespace
}  // namespace orvane
