// The Accessibility API of the platform: other applications' elements, their attributes and
// actions, messaging timeouts, and observers of their notifications.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "core/Identifiers.h"
#include "platform/AccessibilityValue.h"
#include "platform/RunLoopPort.h"

namespace orvane {

// An observer of one process's Accessibility notifications, kept alive by whoever holds it.
class AccessibilityObserverObject {
  public:
    virtual ~AccessibilityObserverObject() = default;
};
using AccessibilityObserverHandle = std::shared_ptr<AccessibilityObserverObject>;

class AccessibilityPort {
  public:
    virtual ~AccessibilityPort() = default;

    // `AXUIElementCopyAttributeValue`: an error code and, on success, the value (which may still
    // be absent, as the platform can answer success with no value).
    struct AttributeReading {
        AccessibilityError error = accessibility_error::noValue;
        std::optional<AccessibilityValue> value;
    };
    virtual AttributeReading copyAttributeValue(const AccessibilityElementHandle& element,
                                                std::string_view attribute) const = 0;

    // `AXUIElementSetAttributeValue`.
    virtual AccessibilityError setAttributeValue(const AccessibilityElementHandle& element,
                                                 std::string_view attribute,
                                                 const AccessibilityValue& value) = 0;
    // `AXUIElementPerformAction`.
    virtual AccessibilityError performAction(const AccessibilityElementHandle& element,
                                             std::string_view action) = 0;

    // The application element of a process.
    virtual AccessibilityElementHandle createApplicationElement(ProcessIdentifier process) = 0;
    // Bounds every later call on this element to `seconds`; the call then answers
    // `cannotComplete`.
    virtual AccessibilityError setMessagingTimeout(const AccessibilityElementHandle& element,
                                                   float seconds) = 0;
    // `AXUIElementGetPid`.
    struct ProcessReading {
        AccessibilityError error = accessibility_error::failure;
        ProcessIdentifier processIdentifier = 0;
    };
    virtual ProcessReading processIdentifier(const AccessibilityElementHandle& element) const = 0;

    // Called on the main run loop with the observer, the element the notification is about, the
    // notification's name and the reference given when it was added.
    using ObserverCallback = std::function<void(const AccessibilityObserverHandle& observer,
                                                const AccessibilityElementHandle& element,
                                                std::string_view notification, void* reference)>;
    struct ObserverCreation {
        AccessibilityError error = accessibility_error::failure;
        AccessibilityObserverHandle observer;
    };
    virtual ObserverCreation createObserver(ProcessIdentifier process,
                                            ObserverCallback callback) = 0;
    virtual AccessibilityError addNotification(const AccessibilityObserverHandle& observer,
                                               const AccessibilityElementHandle& element,
                                               std::string_view notification, void* reference) = 0;
    virtual AccessibilityError removeNotification(const AccessibilityObserverHandle& observer,
                                                  const AccessibilityElementHandle& element,
                                                  std::string_view notification) = 0;
    // The source that delivers the observer's callbacks once added to the main run loop.
    virtual RunLoopSourceHandle observerRunLoopSource(
        const AccessibilityObserverHandle& observer) = 0;
};

}  // namespace orvane
