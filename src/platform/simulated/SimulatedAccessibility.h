// The Accessibility API of the simulated desktop: attributes of its applications and windows,
// messaging timeouts that cost virtual time, and observers fed through the run loop.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/AccessibilityPort.h"

namespace orvane {

class SimulatedDesktop;

class SimulatedAccessibility final : public AccessibilityPort {
  public:
    // Used when an element has no messaging timeout of its own: the platform's global default.
    static constexpr float defaultMessagingTimeout = 6.0f;

    explicit SimulatedAccessibility(SimulatedDesktop& desktop) : desktop_(desktop) {}

    AttributeReading copyAttributeValue(const AccessibilityElementHandle& element,
                                        std::string_view attribute) const override;
    // "AXMinimized" and "AXMain" (Boolean) of a window; "AXRaise" of a window.
    AccessibilityError setAttributeValue(const AccessibilityElementHandle& element,
                                         std::string_view attribute,
                                         const AccessibilityValue& value) override;
    AccessibilityError performAction(const AccessibilityElementHandle& element,
                                     std::string_view action) override;
    AccessibilityElementHandle createApplicationElement(ProcessIdentifier process) override;
    AccessibilityError setMessagingTimeout(const AccessibilityElementHandle& element,
                                           float seconds) override;
    ProcessReading processIdentifier(const AccessibilityElementHandle& element) const override;
    ObserverCreation createObserver(ProcessIdentifier process, ObserverCallback callback) override;
    AccessibilityError addNotification(const AccessibilityObserverHandle& observer,
                                       const AccessibilityElementHandle& element,
                                       std::string_view notification, void* reference) override;
    AccessibilityError removeNotification(const AccessibilityObserverHandle& observer,
                                          const AccessibilityElementHandle& element,
                                          std::string_view notification) override;
    RunLoopSourceHandle observerRunLoopSource(const AccessibilityObserverHandle& observer) override;

    // The element of a window of the simulated desktop, as its application hands it out.
    static AccessibilityElementHandle windowElement(ProcessIdentifier process,
                                                    WindowIdentifier window);

    // Sends a notification of a process to every live observer registered for it on the
    // application element whose source is on the run loop; the callbacks run from the run loop.
    void deliver(ProcessIdentifier process, const AccessibilityElementHandle& element,
                 const std::string& notification);

    // How many observers exist (not yet released) for a process, and the notifications registered.
    std::size_t liveObserverCount(ProcessIdentifier process) const;
    std::vector<std::string> registeredNotifications(ProcessIdentifier process) const;
    // Every messaging timeout set through the port, in order.
    const std::vector<float>& messagingTimeoutsSet() const { return messagingTimeoutsSet_; }
    // Calls of `copyAttributeValue` made so far.
    std::size_t attributeReadCount() const { return attributeReadCount_; }
    // Attribute writes and actions, in order, as "AXMinimized=false on 12" or "AXRaise on 12".
    const std::vector<std::string>& changeLog() const { return changeLog_; }

  private:
    class Observer;

    // Spends the time a call to the process takes; false when it runs past the element's timeout.
    bool spendCallTime(const AccessibilityElementHandle& element) const;
    // Whether a change can reach the window the element names, and the time that costs.
    AccessibilityError reachWindow(const AccessibilityElementHandle& element) const;

    SimulatedDesktop& desktop_;
    std::vector<std::weak_ptr<Observer>> observers_;
    std::vector<float> messagingTimeoutsSet_;
    std::vector<std::string> changeLog_;
    mutable std::size_t attributeReadCount_ = 0;
};

}  // namespace orvane
