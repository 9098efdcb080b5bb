// Watches the desktop for what the recency tracker needs: application activation, launch and
// termination from the workspace, and window focus events from one Accessibility observer per
// regular application. Applications that refuse observers fall back on their activations.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "core/Logger.h"
#include "core/WindowFocusEventSource.h"
#include "platform/AccessibilityPort.h"
#include "platform/NotificationCenterPort.h"
#include "platform/RunLoopPort.h"
#include "platform/WorkspacePort.h"

namespace orvane {

class AccessibilityWindowFocusEventSource final
    : public WindowFocusEventSource,
      public std::enable_shared_from_this<AccessibilityWindowFocusEventSource> {
  public:
    static constexpr float messagingTimeoutSeconds = 0.25f;
    static constexpr double attachRetryDelaySeconds = 2.0;
    static constexpr int attachAttemptsAfterLaunch = 3;

    // Must be held by a `std::shared_ptr`: the callbacks it installs hold it weakly.
    AccessibilityWindowFocusEventSource(
        std::shared_ptr<WorkspacePort> workspace,
        std::shared_ptr<NotificationCenterPort> workspaceNotifications,
        std::shared_ptr<AccessibilityPort> accessibility, std::shared_ptr<RunLoopPort> runLoop);
    // Releases every observer, so that no callback can reach a source that is gone.
    ~AccessibilityWindowFocusEventSource() override;

    std::weak_ptr<WindowFocusEventObserving> observer() const override { return observer_; }
    void setObserver(std::weak_ptr<WindowFocusEventObserving> observer) override {
        observer_ = std::move(observer);
    }
    void startObserving() override;
    void stopObserving() override;

    bool isObserving() const { return isObserving_; }
    bool isAttached(ProcessIdentifier process) const {
        return applicationObservationsByProcessIdentifier_.contains(process);
    }

  private:
    struct ApplicationObservation {
        AccessibilityObserverHandle accessibilityObserver;
        AccessibilityElementHandle applicationElement;
        RunLoopSourceHandle runLoopSource = 0;
    };

    bool attach(ProcessIdentifier process);
    void attachWithRetries(ProcessIdentifier process, int attemptsLeft);
    void detach(ProcessIdentifier process);
    void handleWorkspaceNotification(const PlatformNotification& notification);
    void handleAccessibilityNotification(const AccessibilityObserverHandle& observer,
                                         const AccessibilityElementHandle& element,
                                         std::string_view notification);
    void send(const WindowFocusEvent& event);

    std::shared_ptr<WorkspacePort> workspace_;
    std::shared_ptr<NotificationCenterPort> workspaceNotifications_;
    std::shared_ptr<AccessibilityPort> accessibility_;
    std::shared_ptr<RunLoopPort> runLoop_;
    std::weak_ptr<WindowFocusEventObserving> observer_;
    bool isObserving_ = false;
    std::vector<NotificationObservationToken> workspaceNotificationObservationTokens_;
    std::map<ProcessIdentifier, ApplicationObservation> applicationObservationsByProcessIdentifier_;
    const Logger& log_ = Logger::forCategory(LogCategory::recencytracking);
};

}  // namespace orvane
