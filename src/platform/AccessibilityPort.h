// The Accessibility API of the platform: reading attributes of other applications' elements.
// Grows with the operations the enumeration, recency and activation services call.
#pragma once

#include <optional>
#include <string_view>

#include "platform/AccessibilityValue.h"

namespace orvane {

class AccessibilityPort {
  public:
    virtual ~AccessibilityPort() = default;

    // `AXUIElementCopyAttributeValue`: an error code and, on success, the value (which may still
    // be absent, as the platform can answer success with no value).
    struct AttributeReading {
        AccessibilityError error = accessibility_error::noValue;
        std::optional<AccessibilityValue> value;
    };
    virtual AttributeReading copyAttributeValue(const AccessibilityElementHandle& element,
                                                std::string_view attribute) const = 0;
};

}  // namespace orvane
