#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "core/AccessibilityWindowElement.h"
#include "core/SwitchableWindow.h"

namespace orvane {
namespace {

// Stands for element `elementIdentifier` of process `processIdentifier`; a fresh object per
// wrapper, as the platform hands out.
class FakeElement final : public AccessibilityElementObject {
  public:
    FakeElement(int processIdentifier, int elementIdentifier)
        : processIdentifier_(processIdentifier), elementIdentifier_(elementIdentifier) {}

    bool isEqualTo(const AccessibilityElementObject& other) const override {
        const auto* fake = dynamic_cast<const FakeElement*>(&other);
        return fake != nullptr && fake->processIdentifier_ == processIdentifier_ &&
               fake->elementIdentifier_ == elementIdentifier_;
    }
    std::size_t hashValue() const override {
        return std::hash<long long>{}((static_cast<long long>(processIdentifier_) << 32) ^
                                      elementIdentifier_);
    }

  private:
    int processIdentifier_;
    int elementIdentifier_;
};

AccessibilityWindowElement element(int process, int identifier) {
    return AccessibilityWindowElement(std::make_shared<FakeElement>(process, identifier));
}

// Answers each attribute with a fixed reading; anything unlisted is `attributeUnsupported`.
class FakeAccessibility final : public AccessibilityPort {
  public:
    std::map<std::string, AttributeReading, std::less<>> readings;

    AttributeReading copyAttributeValue(const AccessibilityElementHandle&,
                                        std::string_view attribute) const override {
        auto found = readings.find(attribute);
        if (found == readings.end()) {
            return {accessibility_error::attributeUnsupported, std::nullopt};
        }
        return found->second;
    }

    // Element frames read attributes only.
    AccessibilityError setAttributeValue(const AccessibilityElementHandle&, std::string_view,
                                         const AccessibilityValue&) override {
        return accessibility_error::failure;
    }
    AccessibilityError performAction(const AccessibilityElementHandle&, std::string_view) override {
        return accessibility_error::failure;
    }
    AccessibilityElementHandle createApplicationElement(ProcessIdentifier) override {
        return nullptr;
    }
    AccessibilityError setMessagingTimeout(const AccessibilityElementHandle&, float) override {
        return accessibility_error::success;
    }
    ProcessReading processIdentifier(const AccessibilityElementHandle&) const override {
        return {};
    }
    ObserverCreation createObserver(ProcessIdentifier, ObserverCallback) override { return {}; }
    AccessibilityError addNotification(const AccessibilityObserverHandle&,
                                       const AccessibilityElementHandle&, std::string_view,
                                       void*) override {
        return accessibility_error::failure;
    }
    AccessibilityError removeNotification(const AccessibilityObserverHandle&,
                                          const AccessibilityElementHandle&,
                                          std::string_view) override {
        return accessibility_error::failure;
    }
    RunLoopSourceHandle observerRunLoopSource(const AccessibilityObserverHandle&) override {
        return 0;
    }
};

AccessibilityPort::AttributeReading success(AccessibilityValue value) {
    return {accessibility_error::success, std::move(value)};
}
AccessibilityPort::AttributeReading pointReading(double x, double y) {
    return success({AccessibilityGeometryValue::ofPoint({x, y})});
}
AccessibilityPort::AttributeReading sizeReading(double width, double height) {
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

TEST(AccessibilityWindowElementFrame, ReadsOriginFromPositionAndExtentFromSize) {
    FakeAccessibility accessibility;
    accessibility.readings["AXPosition"] = pointReading(-1440, 25.5);
    accessibility.readings["AXSize"] = sizeReading(800, 600);
    EXPECT_EQ(element(1, 1).readScreenFrame(accessibility), (Rect{{-1440, 25.5}, {800, 600}}));
}

TEST(AccessibilityWindowElementFrame, AnyUnreadableOrMistypedAttributeGivesNothing) {
    struct Case {
        const char* name;
        AccessibilityPort::AttributeReading position;
        AccessibilityPort::AttributeReading size;
    };
    const Case cases[] = {
        {"size fails", pointReading(10, 20), {accessibility_error::cannotComplete, std::nullopt}},
        {"position fails despite a value",
         {accessibility_error::failure,
          AccessibilityValue{AccessibilityGeometryValue::ofPoint({})}},
         sizeReading(1, 1)},
        {"position succeeds with no value",
         {accessibility_error::success, std::nullopt},
         sizeReading(1, 1)},
        {"size is a string", pointReading(10, 20), success({std::string("800x600")})},
        {"position is a number", success({3.0}), sizeReading(1, 1)},
        {"position is a size value", sizeReading(10, 20), sizeReading(1, 1)},
        {"size is a point value", pointReading(10, 20), pointReading(1, 1)},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        FakeAccessibility accessibility;
        accessibility.readings["AXPosition"] = each.position;
        accessibility.readings["AXSize"] = each.size;
        EXPECT_EQ(element(1, 1).readScreenFrame(accessibility), std::nullopt);
    }
    FakeAccessibility accessibility;
    accessibility.readings["AXPosition"] = pointReading(10, 20);
    accessibility.readings["AXSize"] = sizeReading(1, 1);
    EXPECT_EQ(AccessibilityWindowElement(nullptr).readScreenFrame(accessibility), std::nullopt);
}

SwitchableWindow record(WindowIdentifier identifier, std::string title, double focusedAt) {
    SwitchableWindow window;
    window.windowIdentifier = identifier;
    window.owningProcessIdentifier = 1;
    window.windowTitle = std::move(title);
    window.lastFocusedTimestamp = Date{focusedAt};
    return window;
}

TEST(SwitchableWindowIdentity, TheWindowIdentifierAloneDecides) {
    const auto before = record(9, "Draft", 100);
    auto after = record(9, "Draft — edited", 200);
    after.isMinimized = true;
    EXPECT_TRUE(before == after);
    EXPECT_EQ(std::hash<SwitchableWindow>{}(before), std::hash<SwitchableWindow>{}(after));
    EXPECT_EQ((std::unordered_set<SwitchableWindow>{before, after}.size()), 1u);
    EXPECT_FALSE(before == record(10, "Draft", 100));
}

}  // namespace
}  // namespace orvane
