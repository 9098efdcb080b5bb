// The Accessibility port over EWMH and ICCCM: applications are processes with client windows,
// their windows' attributes come from the window model, and the actions are requests to the
// window manager (raise, activate on the window's desktop, minimize and restore). Notifications
// follow the model's changes.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/AccessibilityPort.h"
#include "platform/RunLoopPort.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11WindowModel.h"

namespace orvane {

// Must be held by a std::shared_ptr: a raise waits on the run loop, holding it weakly.
class X11Accessibility final : public AccessibilityPort,
                               public std::enable_shared_from_this<X11Accessibility> {
  public:
    X11Accessibility(X11Connection& connection, X11WindowModel& model,
                     std::shared_ptr<RunLoopPort> runLoop);

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

    // Calls `then` once the window manager has answered the last activation asked of it (the
    // active window changed, or the window went), or has had a tenth of a second to; at once when
    // no activation is outstanding.
    void whenActivationAnswered(std::function<void()> then);

  private:
    class Observer;

    // The model's window behind a window element of that process; null when it is gone.
    const X11WindowModel::ClientWindow* client(const AccessibilityElementHandle& element) const;
    void modelChanged(X11WindowModel::ChangeKind kind, const X11WindowModel::ClientWindow& window);
    void notify(ProcessIdentifier process, xcb_window_t window, std::string_view notification);
    void sendToWindowManager(xcb_window_t window, xcb_atom_t type,
                             std::initializer_list<std::uint32_t> data);

    void sendPendingRaise();
    void awaitActivation(xcb_window_t window);
    void activationAnswered();

    X11Connection& connection_;
    X11WindowModel& model_;
    std::shared_ptr<RunLoopPort> runLoop_;
    // A raise is sent once the current work is done, and not at all when the same window is
    // activated meanwhile: activation raises it anyway, and one request reaches the window
    // manager sooner than two.
    std::optional<xcb_window_t> pendingRaise_;
    std::vector<std::weak_ptr<Observer>> observers_;
    std::optional<ProcessIdentifier> frontmostProcess_;
    std::optional<xcb_window_t> awaitedActivation_;
    std::vector<std::function<void()>> afterActivation_;
    std::optional<TimerToken> activationPatience_;
};

}  // namespace orvane
