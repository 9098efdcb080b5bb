// The Accessibility port over the desktop's window model: applications are the model's
// applications with client windows, their windows' attributes come from the model, and the
// actions are the model's requests to the desktop (raise, activate on the window's desktop,
// minimize and restore). Notifications follow the model's changes.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/AccessibilityPort.h"
#include "platform/RunLoopPort.h"
#include "platform/linux/DesktopWindows.h"

namespace orvane {

// Must be held by a std::shared_ptr: a raise waits on the run loop, holding it weakly.
class LinuxAccessibility final : public AccessibilityPort,
                                 public std::enable_shared_from_this<LinuxAccessibility> {
  public:
    LinuxAccessibility(DesktopWindows& model, std::shared_ptr<RunLoopPort> runLoop);

    AttributeReading copyAttributeValue(const AccessibilityElementHandle& element,
                                        std::string_view attribute) const override;
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

    // Calls `then` once the desktop has answered the last activation asked of it (the
    // active window changed, or the window went), or has had a tenth of a second to; at once when
    // no activation is outstanding.
    void whenActivationAnswered(std::function<void()> then);

  private:
    class Observer;

    // The model's window behind a window element of that process; null when it is gone.
    const DesktopWindows::Window* client(const AccessibilityElementHandle& element) const;
    void modelChanged(DesktopWindows::ChangeKind kind, const DesktopWindows::Window& window);
    void notify(ProcessIdentifier process, DesktopWindows::Handle window,
                std::string_view notification);

    void sendPendingRaise();
    void awaitActivation(DesktopWindows::Handle window);
    void activationAnswered();

    DesktopWindows& model_;
    std::shared_ptr<RunLoopPort> runLoop_;
    // A raise is sent once the current work is done, and not at all when the same window is
    // activated meanwhile: activation raises it anyway, and one request reaches the desktop
    // sooner than two.
    std::optional<DesktopWindows::Handle> pendingRaise_;
    std::vector<std::weak_ptr<Observer>> observers_;
    std::optional<ProcessIdentifier> frontmostProcess_;
    std::optional<DesktopWindows::Handle> awaitedActivation_;
    std::vector<std::function<void()>> afterActivation_;
    std::optional<TimerToken> activationPatience_;
};

}  // namespace orvane
