// Why an entry of the window list is not offered by the switcher; logged with each enumeration.
#pragma once

#include <string_view>

namespace orvane {

// In the order the correlation tests them: the first that applies is the one reported.
enum class WindowExclusionReason {
    ownedByCurrentProcess,
    nonZeroWindowLayer,
    fullyTransparent,
    belowMinimumSize,
    untitledWithoutAccessibilityPairing,
    missingAccessibilityPairing,
    nonStandardSubrole,
};

// A lower-case phrase for logs, such as "fully transparent".
std::string_view description(WindowExclusionReason reason);

}  // namespace orvane
