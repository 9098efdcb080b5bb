#include "activation/AccessibilityWindowActivationService.h"

#include <utility>

namespace orvane {

AccessibilityWindowActivationService::AccessibilityWindowActivationService(
    std::shared_ptr<MostRecentlyUsedWindowOrdering> recencyOrdering,
    std::shared_ptr<PrivateWindowFocusService> privateWindowFocusService,
    std::shared_ptr<AccessibilityPort> accessibility, std::shared_ptr<WorkspacePort> workspace)
    : recencyOrdering_(std::move(recencyOrdering)),
      privateWindowFocusService_(std::move(privateWindowFocusService)),
      accessibility_(std::move(accessibility)),
      workspace_(std::move(workspace)) {}

// A record without an element fails like a stale element would.
AccessibilityError AccessibilityWindowActivationService::setFlag(const SwitchableWindow& window,
                                                                 const char* attribute,
                                                                 bool value) {
    if (!window.accessibilityElement) {
        return accessibility_error::invalidElement;
    }
    return accessibility_->setAttributeValue(window.accessibilityElement->underlyingElement(),
                                             attribute, AccessibilityValue{value});
}

AccessibilityError AccessibilityWindowActivationService::perform(const SwitchableWindow& window,
                                                                 const char* action) {
    if (!window.accessibilityElement) {
        return accessibility_error::invalidElement;
    }
    return accessibility_->performAction(window.accessibilityElement->underlyingElement(), action);
}

void AccessibilityWindowActivationService::activate(const SwitchableWindow& window) {
    const auto& name = window.owningApplicationName;
    // The enumeration's view of the window is trusted; reading the attribute again would cost a
    // call to a possibly hung process.
    if (window.isMinimized &&
        setFlag(window, "AXMinimized", false) != accessibility_error::success) {
        log_.error("Failed to unminimize window of %{public}s", name);
    }
    const bool focusedPrivately = privateWindowFocusService_->focusWindow(
        window.windowIdentifier, window.owningProcessIdentifier);
    // On both routes: the application may have come forward with another window on top.
    if (perform(window, "AXRaise") != accessibility_error::success) {
        log_.error("Failed to raise window of %{public}s", name);
    }
    if (setFlag(window, "AXMain", true) != accessibility_error::success) {
        log_.error("Failed to mark window main for %{public}s", name);
    }
    if (!focusedPrivately) {
        if (!workspace_->runningApplication(window.owningProcessIdentifier)) {
            log_.error("No running application found for %{public}s", name);
        } else if (!workspace_->activateApplication(window.owningProcessIdentifier, 0)) {
            log_.error("Failed to activate application %{public}s", name);
        }
    }
    // Last, so that the stack moves once the window is as far forward as it will get.
    recencyOrdering_->recordImmediateFocus(window);
}

}  // namespace orvane
