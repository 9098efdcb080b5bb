#include "platform/simulated/SimulatedAccessibilityElement.h"

#include <functional>

namespace orvane {

bool SimulatedAccessibilityElement::isEqualTo(const AccessibilityElementObject& other) const {
    const auto* simulated = dynamic_cast<const SimulatedAccessibilityElement*>(&other);
    return simulated != nullptr && simulated->processIdentifier_ == processIdentifier_ &&
           simulated->windowIdentifier_ == windowIdentifier_;
}

std::size_t SimulatedAccessibilityElement::hashValue() const {
    const auto combined =
        (static_cast<std::uint64_t>(static_cast<std::uint32_t>(processIdentifier_)) << 32) |
        windowIdentifier_;
    return std::hash<std::uint64_t>{}(combined);
}

}  // namespace orvane
