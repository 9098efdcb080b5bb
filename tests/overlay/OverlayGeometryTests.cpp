#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "overlay/OverlayGeometry.h"

namespace orvane {
namespace {

struct GeometryCase {
    const char* name;
    std::ptrdiff_t windowCount;
    std::optional<double> visibleFrameWidth;
    SwitcherCardSize cardSize;
    OverlayGeometry expected;
};

class OverlayGeometryTest : public testing::TestWithParam<GeometryCase> {};

TEST_P(OverlayGeometryTest, FitsColumnsIntoNinetyPercentOfTheScreen) {
    const auto& given = GetParam();
    EXPECT_EQ(overlayGeometry(given.windowCount, given.visibleFrameWidth, given.cardSize),
              given.expected);
}

constexpr auto small = SwitcherCardSize::small;
constexpr auto medium = SwitcherCardSize::medium;
constexpr auto large = SwitcherCardSize::large;
constexpr auto none = std::nullopt;

INSTANTIATE_TEST_SUITE_P(
    Examples, OverlayGeometryTest,
    testing::Values(
        // 1268 / 212 = 5.98 is cut to 5; two rows.
        GeometryCase{"sevenOn1440", 7, 1440.0, medium, {5, 1088, 366}},
        // Without a screen the width is that of 1280: 1124 / 272 = 4.13.
        GeometryCase{"tenWithoutScreen", 10, none, large, {4, 1116, 646}},
        GeometryCase{"noWindows", 0, 1440.0, medium, {1, 240, 197}},
        GeometryCase{"negativeCount", -4, none, small, {1, 200, 172}},
        GeometryCase{"tooNarrowForOneCard", 3, 100.0, medium, {1, 240, 535}},
        GeometryCase{"exactlyMaximumColumns", 5, 1440.0, medium, {5, 1088, 197}},
        GeometryCase{"oneMoreThanMaximum", 6, 1440.0, medium, {5, 1088, 366}},
        GeometryCase{"fewerWindowsThanColumns", 2, 1440.0, small, {2, 372, 172}},
        GeometryCase{"smallCardsWrapAtSeven", 20, 1440.0, small, {7, 1232, 460}},
        // 1240 x 0.9 is exactly four large cards with spacing and padding; a point less is not.
        GeometryCase{"exactFit", 4, 1240.0, large, {4, 1116, 234}},
        GeometryCase{"justShortOfFit", 4, 1239.0, large, {3, 844, 440}},
        GeometryCase{
            "infiniteWidth", 3, std::numeric_limits<double>::infinity(), medium, {3, 664, 197}},
        GeometryCase{
            "notANumberWidth", 3, std::numeric_limits<double>::quiet_NaN(), medium, {1, 240, 535}}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace orvane
