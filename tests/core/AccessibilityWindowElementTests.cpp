#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/AccessibilityWindowElement.h"
#include "core/SwitchableWindow.h"
#include "platform/simulated/SimulatedAccessibilityElement.h"
#include "platform/simulated/SimulatedDesktop.h"
#include "support/ForwardingAccessibilityPort.h"

namespace orvane {
namespace {

using Reading = AccessibilityPort::AttributeReading;

// A fresh platform object per wrapper, as the platform hands out.
AccessibilityWindowElement element(ProcessIdentifier process, WindowIdentifier window) {
    return AccessibilityWindowElement(
        std::make_shared<SimulatedAccessibilityElement>(process, window));
}

// Answers each attribute with a fixed reading; anything unlisted is `attributeUnsupported`.
struct FixedAccessibility final : ForwardingAccessibilityPort {
    FixedAccessibility(Reading position, Reading size)
        : ForwardingAccessibilityPort(SimulatedDesktop::make()->accessibilityPort()),
          readings{{"AXPosition", position}, {"AXSize", size}} {}
    Reading copyAttributeValue(const AccessibilityElementHandle&,
                               std::string_view attribute) const override {
        reads.emplace_back(attribute);
        const auto found = readings.find(attribute);
        return found == readings.end() ? Reading{accessibility_error::attributeUnsupported, {}}
                                       : found->second;
    }
    std::map<std::string, Reading, std::less<>> readings;
    mutable std::vector<std::string> reads;
};

// Built out of line: braced readings in the case table trip a false uninitialized warning.
Reading reading(AccessibilityError error, std::optional<AccessibilityValue> value = std::nullopt) {
    return {error, std::move(value)};
}
Reading success(AccessibilityValue value) {
    return {accessibility_error::success, std::move(value)};
}
Reading point(double x, double y) {
    return success({AccessibilityGeometryValue::ofPoint({x, y})});
}
Reading size(double width, double height) {
    return success({AccessibilityGeometryValue::ofSize({width, height})});
}

TEST(AccessibilityWindowElementIdentity, SeparateWrappersOfOneElementAreOneKey) {
    const auto first = element(42, 7);
    const auto second = element(42, 7);
    ASSERT_NE(first.underlyingElement(), second.underlyingElement());
    EXPECT_TRUE(first == second);
    EXPECT_EQ(std::hash<AccessibilityWindowElement>{}(first),
              std::hash<AccessibilityWindowElement>{}(second));

    std::unordered_map<AccessibilityWindowElement, std::string> titles;
    titles.emplace(first, "Inbox");
    ASSERT_EQ(titles.count(second), 1u);
    EXPECT_EQ(titles.at(second), "Inbox");

    // Same element id in another process, or another element in the same process.
    EXPECT_FALSE(first == element(43, 7));
    EXPECT_FALSE(first == element(42, 8));
    EXPECT_EQ(titles.count(element(43, 7)), 0u);
    EXPECT_FALSE(first == AccessibilityWindowElement(nullptr));
}

// The origin comes from the position and the extent from the size; any unreadable or mistyped
// attribute gives nothing.
TEST(AccessibilityWindowElementFrame, ReadsOriginFromPositionAndExtentFromSize) {
    EXPECT_EQ(element(1, 1).readScreenFrame(FixedAccessibility(point(-1440, 25.5), size(800, 600))),
              (Rect{{-1440, 25.5}, {800, 600}}));
    // Only a failed or empty position read stops before the size; types are checked after both.
    const std::vector<std::string> both{"AXPosition", "AXSize"};
    const std::vector<std::string> positionOnly{"AXPosition"};
    struct Case {
        const char* name;
        Reading position, size;
        std::vector<std::string> reads;
    };
    const std::vector<Case> cases = {
        {"size fails", point(10, 20), reading(accessibility_error::cannotComplete), both},
        {"position fails despite a value",
         reading(accessibility_error::failure,
                 AccessibilityValue{AccessibilityGeometryValue::ofPoint({})}),
         size(1, 1), positionOnly},
        {"position succeeds with no value", reading(accessibility_error::success), size(1, 1),
         positionOnly},
        {"size is a string", point(10, 20), success({std::string("800x600")}), both},
        {"position is a number", success({3.0}), size(1, 1), both},
        {"position is a size value", size(10, 20), size(1, 1), both},
        {"size is a point value", point(10, 20), point(1, 1), both},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        const FixedAccessibility accessibility(each.position, each.size);
        EXPECT_EQ(element(1, 1).readScreenFrame(accessibility), std::nullopt);
        EXPECT_EQ(accessibility.reads, each.reads);
    }
    EXPECT_EQ(AccessibilityWindowElement(nullptr).readScreenFrame(
                  FixedAccessibility(point(10, 20), size(1, 1))),
              std::nullopt);
}

TEST(SwitchableWindowIdentity, TheWindowIdentifierAloneDecides) {
    SwitchableWindow before;
    before.windowIdentifier = 9;
    before.windowTitle = "Draft";
    auto after = before;
    after.windowTitle = "Draft — edited";
    after.lastFocusedTimestamp = Date{200};
    after.isMinimized = true;
    EXPECT_TRUE(before == after);
    EXPECT_EQ(std::hash<SwitchableWindow>{}(before), std::hash<SwitchableWindow>{}(after));
    EXPECT_EQ((std::unordered_set<SwitchableWindow>{before, after}.size()), 1u);
    auto other = before;
    other.windowIdentifier = 10;
    EXPECT_FALSE(before == other);
}

}  // namespace
}  // namespace orvane
