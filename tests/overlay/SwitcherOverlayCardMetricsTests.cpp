#include <gtest/gtest.h>

#include "overlay/SwitcherOverlayCardMetrics.h"

namespace orvane {
namespace {

// 88, 113 and 113 are rounded-up halves (87.5, 112.5, 112.5): truncation or banker's rounding
// gives 87, 112 or 112.
TEST(SwitcherOverlayCardMetricsTest, DerivesEveryMeasureFromTheTwoBaseTables) {
    using Metrics = SwitcherOverlayCardMetrics;
    EXPECT_EQ(Metrics::metrics(SwitcherCardSize::small), (Metrics{160, 132, 140, 88, 66, 22}));
    EXPECT_EQ(Metrics::metrics(SwitcherCardSize::medium), (Metrics{200, 157, 180, 113, 85, 26}));
    EXPECT_EQ(Metrics::metrics(SwitcherCardSize::large), (Metrics{260, 194, 240, 150, 113, 30}));
    auto changed = Metrics::metrics(SwitcherCardSize::medium);
    changed.applicationIconBadgeSideLength = 27;
    EXPECT_NE(changed, Metrics::metrics(SwitcherCardSize::medium))
        << "equality compares every field";
}

}  // namespace
}  // namespace orvane
