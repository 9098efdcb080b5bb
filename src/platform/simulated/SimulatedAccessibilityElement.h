// An Accessibility element of the simulated desktop: an application or one of its windows. Equal
// elements name the same thing; each object keeps its own messaging timeout, as the platform does.
#pragma once

#include <optional>

#include "core/Identifiers.h"
#include "platform/AccessibilityElementObject.h"

namespace orvane {

class SimulatedAccessibilityElement final : public AccessibilityElementObject {
  public:
    // A window identifier of 0 is the application element.
    SimulatedAccessibilityElement(ProcessIdentifier processIdentifier,
                                  WindowIdentifier windowIdentifier)
        : processIdentifier_(processIdentifier), windowIdentifier_(windowIdentifier) {}

    bool isEqualTo(const AccessibilityElementObject& other) const override;
    std::size_t hashValue() const override;

    ProcessIdentifier processIdentifier() const { return processIdentifier_; }
    WindowIdentifier windowIdentifier() const { return windowIdentifier_; }
    bool isApplication() const { return windowIdentifier_ == 0; }

    std::optional<float> messagingTimeout() const { return messagingTimeout_; }
    void setMessagingTimeout(float seconds) const { messagingTimeout_ = seconds; }

  private:
    ProcessIdentifier processIdentifier_;
    WindowIdentifier windowIdentifier_;
    // Set through the port on a shared, otherwise immutable handle.
    mutable std::optional<float> messagingTimeout_;
};

}  // namespace orvane
