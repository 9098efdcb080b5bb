// One focus-related event of the desktop, as the focus event source reports it to the tracker.
#pragma once

#include <memory>
#include <utility>

#include "core/AccessibilityWindowElement.h"
#include "core/Identifiers.h"

namespace orvane {

struct WindowFocusEvent {
    enum class Kind {
        focusedWindowChanged,
        applicationActivated,
        windowCreated,
        windowDestroyed,
        windowMiniaturized,
        windowDeminiaturized,
        applicationTerminated,
    };

    Kind kind = Kind::applicationActivated;
    // Absent only for `windowDestroyed`.
    ProcessIdentifier processIdentifier = 0;
    // Absent for `applicationActivated` and `applicationTerminated`.
    std::shared_ptr<const AccessibilityWindowElement> element;

    static WindowFocusEvent focusedWindowChanged(
        ProcessIdentifier process, std::shared_ptr<const AccessibilityWindowElement> element) {
        return {Kind::focusedWindowChanged, process, std::move(element)};
    }
    static WindowFocusEvent applicationActivated(ProcessIdentifier process) {
        return {Kind::applicationActivated, process, nullptr};
    }
    static WindowFocusEvent windowCreated(
        ProcessIdentifier process, std::shared_ptr<const AccessibilityWindowElement> element) {
        return {Kind::windowCreated, process, std::move(element)};
    }
    static WindowFocusEvent windowDestroyed(
        std::shared_ptr<const AccessibilityWindowElement> element) {
        return {Kind::windowDestroyed, 0, std::move(element)};
    }
    static WindowFocusEvent windowMiniaturized(
        ProcessIdentifier process, std::shared_ptr<const AccessibilityWindowElement> element) {
        return {Kind::windowMiniaturized, process, std::move(element)};
    }
    static WindowFocusEvent windowDeminiaturized(
        ProcessIdentifier process, std::shared_ptr<const AccessibilityWindowElement> element) {
        return {Kind::windowDeminiaturized, process, std::move(element)};
    }
    static WindowFocusEvent applicationTerminated(ProcessIdentifier process) {
        return {Kind::applicationTerminated, process, nullptr};
    }
};

}  // namespace orvane
