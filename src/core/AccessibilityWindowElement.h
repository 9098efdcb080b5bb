// A hashable handle on one window in the Accessibility tree of another process. Equality and hash
// are the platform's: two wrappers made separately for the same window are equal.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>

#include "core/Geometry.h"
#include "platform/AccessibilityElementObject.h"
#include "platform/AccessibilityPort.h"

namespace orvane {

class AccessibilityWindowElement {
  public:
    // Keeps the platform element alive for the wrapper's life.
    explicit AccessibilityWindowElement(AccessibilityElementHandle underlyingElement);

    const AccessibilityElementHandle& underlyingElement() const { return underlyingElement_; }

    // The window's frame from its "AXPosition" and "AXSize" attributes; nothing when either can't
    // be read or isn't a geometry value of the right kind.
    std::optional<Rect> readScreenFrame(const AccessibilityPort& accessibility) const;

    std::size_t hashValue() const;
    friend bool operator==(const AccessibilityWindowElement& left,
                           const AccessibilityWindowElement& right);

  private:
    AccessibilityElementHandle underlyingElement_;
};

}  // namespace orvane

template <>
struct std::hash<orvane::AccessibilityWindowElement> {
    std::size_t operator()(const orvane::AccessibilityWindowElement& element) const noexcept {
        return element.hashValue();
    }
};
