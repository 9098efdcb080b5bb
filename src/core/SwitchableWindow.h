// One window offered by the switcher. Identity, equality and hash are the window identifier alone,
// so every list of windows can be searched and de-duplicated by that number.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/AccessibilityWindowElement.h"
#include "core/Date.h"
#include "core/Geometry.h"
#include "core/Identifiers.h"

namespace orvane {

struct SwitchableWindow {
    WindowIdentifier windowIdentifier = 0;
    ProcessIdentifier owningProcessIdentifier = 0;
    std::string owningApplicationName;
    std::string windowTitle;
    // Shared by every copy of the record; the element through which the window is activated.
    std::shared_ptr<const AccessibilityWindowElement> accessibilityElement;
    bool isMinimized = false;
    Rect screenFrame;
    // The distant past until the recency ordering fills it in.
    Date lastFocusedTimestamp = Date::distantPast();

    friend bool operator==(const SwitchableWindow& left, const SwitchableWindow& right) {
        return left.windowIdentifier == right.windowIdentifier;
    }
};

}  // namespace orvane

template <>
struct std::hash<orvane::SwitchableWindow> {
    std::size_t operator()(const orvane::SwitchableWindow& window) const noexcept {
        return std::hash<orvane::WindowIdentifier>{}(window.windowIdentifier);
    }
};
