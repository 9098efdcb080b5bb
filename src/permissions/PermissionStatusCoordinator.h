// Keeps the last known answers about the program's permissions, refreshes them at fixed moments,
// and announces Accessibility going from granted to not granted.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/Observable.h"
#include "core/PermissionStatusProviding.h"
#include "platform/ApplicationPort.h"
#include "platform/NotificationCenterPort.h"
#include "platform/PermissionPort.h"
#include "platform/RunLoopPort.h"

namespace orvane {

// A capability without an entry counts as not granted wherever the table is read directly.
using PermissionStatusTable = std::map<PermissionCapability, PermissionGrantStatus>;

// Must be held by a std::shared_ptr, made through `make`: the timer and the notification observer
// hold it weakly, so that a callback arriving after it is gone does nothing.
class PermissionStatusCoordinator final
    : public PermissionStatusProviding,
      public std::enable_shared_from_this<PermissionStatusCoordinator> {
  public:
    static constexpr double pollingInterval = 0.5;
    static constexpr double pollingTolerance = 0.1;

    // Refreshes once, then listens to the application (given by `applicationNotifications`)
    // becoming active.
    static std::shared_ptr<PermissionStatusCoordinator> make(
        std::shared_ptr<PermissionPort> permissions, std::shared_ptr<RunLoopPort> mainRunLoop,
        std::shared_ptr<NotificationCenterPort> applicationNotifications);

    ~PermissionStatusCoordinator() override;
    PermissionStatusCoordinator(const PermissionStatusCoordinator&) = delete;
    PermissionStatusCoordinator& operator=(const PermissionStatusCoordinator&) = delete;

    // Logs nothing and never calls the revocation handler; an entry it changes is no longer a
    // change to the next refresh.
    PermissionGrantStatus status(PermissionCapability capability) override;
    void requestAccess(PermissionCapability capability) override;
    void openSystemSettings(PermissionCapability capability) override;

    Observable<PermissionStatusTable>& statusByCapability() { return statusByCapability_; }
    const Observable<PermissionStatusTable>& statusByCapability() const {
        return statusByCapability_;
    }

    // Called on the main thread after the table shows the loss, and only on the transition.
    void setAccessibilityRevocationHandler(std::optional<std::function<void()>> handler) {
        accessibilityRevocationHandler_ = std::move(handler);
    }

    // For the onboarding window only: refreshes at once and then every half second.
    void startPolling();
    void stopPolling();
    bool isPolling() const { return pollingTimer_.has_value(); }

    // The one path whose status changes are logged and may raise a revocation.
    void refresh();

    // The platform's word on what keeps a capability away now, such as the program holding the
    // shortcut; empty where the fixed description says it all.
    std::string missingReason(PermissionCapability capability);

    static std::string_view logName(PermissionCapability capability);
    static std::string_view logName(PermissionGrantStatus status);
    static std::string_view displayTitle(PermissionCapability capability);

  private:
    PermissionStatusCoordinator(std::shared_ptr<PermissionPort> permissions,
                                std::shared_ptr<RunLoopPort> mainRunLoop,
                                std::shared_ptr<NotificationCenterPort> applicationNotifications);

    PermissionGrantStatus liveStatus(PermissionCapability capability);

    std::shared_ptr<PermissionPort> permissions_;
    std::shared_ptr<RunLoopPort> mainRunLoop_;
    std::shared_ptr<NotificationCenterPort> applicationNotifications_;

    Observable<PermissionStatusTable> statusByCapability_;
    std::optional<std::function<void()>> accessibilityRevocationHandler_;
    std::optional<TimerToken> pollingTimer_;
    std::optional<NotificationObservationToken> applicationDidBecomeActiveObserver_;
};

}  // namespace orvane
