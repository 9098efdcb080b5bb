// One window of the simulated desktop, as the window server and the Accessibility tree see it.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "core/Geometry.h"
#include "core/Identifiers.h"

namespace orvane {

struct SimulatedWindow {
    WindowIdentifier windowIdentifier = 0;
    ProcessIdentifier owningProcessIdentifier = 0;
    Rect bounds{{0, 0}, {800, 600}};
    std::int64_t layer = 0;
    double alpha = 1.0;
    // The title in the window list; absent when the window server withholds it.
    std::optional<std::string> listTitle;
    // The title in the Accessibility tree.
    std::optional<std::string> accessibilityTitle;
    std::optional<std::string> subrole = std::string("AXStandardWindow");
    bool isMinimized = false;
    // Off screen: on another Space, or hidden.
    bool isOffScreen = false;
    // The application lists the window among its Accessibility windows.
    bool isInAccessibilityTree = true;
    // Where the Accessibility tree places the window, when it disagrees with the window server.
    std::optional<Rect> accessibilityFrame;

    // Fault knobs: Accessibility attributes answered with a value of the wrong type, and window
    // list keys left out of the window's dictionary.
    std::set<std::string> wronglyTypedAttributes;
    std::set<std::string> missingWindowListKeys;
};

}  // namespace orvane
