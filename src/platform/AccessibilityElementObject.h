// The platform object behind an Accessibility element handle, with the platform's own equality
// and hash (two handles made separately for one window compare equal).
#pragma once

#include <cstddef>
#include <memory>

namespace orvane {

class AccessibilityElementObject {
  public:
    virtual ~AccessibilityElementObject() = default;

    // True when both objects stand for the same element of the same process.
    virtual bool isEqualTo(const AccessibilityElementObject& other) const = 0;
    // Equal objects give equal hashes.
    virtual std::size_t hashValue() const = 0;
};

// A retained reference to an element; it keeps the platform object alive for as long as it is held.
using AccessibilityElementHandle = std::shared_ptr<const AccessibilityElementObject>;

}  // namespace orvane
