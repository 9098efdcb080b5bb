// One running application of the simulated desktop, with the fault knobs of its Accessibility side.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "core/Identifiers.h"
#include "platform/AccessibilityValue.h"
#include "platform/RunningApplication.h"

namespace orvane {

struct SimulatedApplication {
    RunningApplication runningApplication;
    // The window that has the focus inside the application.
    std::optional<WindowIdentifier> focusedWindow;

    // Fault knobs.
    // "AXWindows" answers this error: the application refuses Accessibility.
    std::optional<AccessibilityError> windowsAttributeError;
    // Every Accessibility call to the application takes this long; past the caller's messaging
    // timeout it costs the timeout and answers `cannotComplete`.
    double accessibilityResponseDelay = 0;
    // "AXWindows" answers a text instead of an array.
    bool windowsAttributeIsNotArray = false;
    // An Accessibility observer cannot be created for the process.
    bool observerCreationFails = false;
    // Notifications the application refuses to register, by name.
    std::set<std::string> refusedNotifications;
    // `AXUIElementGetPid` fails for the application's elements.
    bool processIdentifierLookupFails = false;
};

}  // namespace orvane
