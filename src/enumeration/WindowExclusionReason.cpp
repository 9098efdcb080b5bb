#include "enumeration/WindowExclusionReason.h"

namespace orvane {

std::string_view description(WindowExclusionReason reason) {
    switch (reason) {
        case WindowExclusionReason::ownedByCurrentProcess:
            return "owned by the current process";
        case WindowExclusionReason::nonZeroWindowLayer:
            return "not on the standard window layer";
        case WindowExclusionReason::fullyTransparent:
            return "fully transparent";
        case WindowExclusionReason::belowMinimumSize:
            return "below the minimum switchable size";
        case WindowExclusionReason::untitledWithoutAccessibilityPairing:
            return "untitled and unpaired with any Accessibility window";
        case WindowExclusionReason::missingAccessibilityPairing:
            return "unpaired with any Accessibility window";
        case WindowExclusionReason::nonStandardSubrole:
            return "Accessibility subrole is not a standard window";
    }
    return "unknown";
}

}  // namespace orvane
