#include <gtest/gtest.h>

#include "overlay/SwitcherOverlayCardMetrics.h"

namespace orvane {
namespace {

struct MetricsCase {
    SwitcherCardSize size;
    SwitcherOverlayCardMetrics expected;
};

class SwitcherOverlayCardMetricsTest : public testing::TestWithParam<MetricsCase> {};

// 88, 113 and 113 are rounded-up halves (87.5, 112.5, 112.5): truncation or banker's rounding
// gives 87, 112 or 112.
TEST_P(SwitcherOverlayCardMetricsTest, DerivesEveryMeasureFromTheTwoBaseTables) {
    EXPECT_EQ(SwitcherOverlayCardMetrics::metrics(GetParam().size), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    AllCardSizes, SwitcherOverlayCardMetricsTest,
    testing::Values(MetricsCase{SwitcherCardSize::small, {160, 132, 140, 88, 66, 22}},
                    MetricsCase{SwitcherCardSize::medium, {200, 157, 180, 113, 85, 26}},
                    MetricsCase{SwitcherCardSize::large, {260, 194, 240, 150, 113, 30}}));

TEST(SwitcherOverlayCardMetricsEquality, ComparesEveryField) {
    auto changed = SwitcherOverlayCardMetrics::metrics(SwitcherCardSize::medium);
    changed.applicationIconBadgeSideLength = 27;
    EXPECT_NE(changed, SwitcherOverlayCardMetrics::metrics(SwitcherCardSize::medium));
}

}  // namespace
}  // namespace orvane
