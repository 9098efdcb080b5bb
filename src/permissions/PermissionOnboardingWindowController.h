// Decides when the welcome window shows, makes the application a regular one while it is open, and
// turns it back into a background one once no user window is left.
#pragma once

#include <memory>
#include <optional>

#include "permissions/PermissionOnboardingView.h"
#include "permissions/PermissionStatusCoordinator.h"
#include "platform/ApplicationPort.h"
#include "platform/NotificationCenterPort.h"

namespace orvane {

// Main thread only. Must be held by a std::shared_ptr, made through `make`: the buttons and the
// window observers hold it weakly, so that a notice arriving after it is gone does nothing.
class PermissionOnboardingWindowController final
    : public std::enable_shared_from_this<PermissionOnboardingWindowController> {
  public:
    // `applicationNotifications` is where `application` posts its windows' closings.
    static std::shared_ptr<PermissionOnboardingWindowController> make(
        std::shared_ptr<PermissionStatusCoordinator> coordinator,
        std::shared_ptr<ApplicationPort> application,
        std::shared_ptr<NotificationCenterPort> applicationNotifications);
    ~PermissionOnboardingWindowController();
    // Does nothing while a window is open; shows one if a required capability is missing, else
    // logs that it skipped.
    void showIfRequiredPermissionsAreMissing();
    // Builds a new window with a fresh view, even when one is open: callers that may find one open
    // raise it instead.
    void show();
    // The open welcome window, if any.
    std::optional<PlatformWindowHandle> window() const;
    // The view of the open window, if any (renderers and the simulator read it).
    std::shared_ptr<PermissionOnboardingView> view() const;
    bool isWaitingToRestoreActivationPolicy() const;

  private:
    PermissionOnboardingWindowController(
        std::shared_ptr<PermissionStatusCoordinator> coordinator,
        std::shared_ptr<ApplicationPort> application,
        std::shared_ptr<NotificationCenterPort> applicationNotifications);

    void closeWindow();
    void windowWillClose(PlatformWindowHandle closing);
    void armActivationPolicyRestoration();
    void otherWindowWillClose(std::optional<PlatformWindowHandle> closing);
    bool isAnyUserWindowOpen(std::optional<PlatformWindowHandle> excluding) const;
    void removeObserver(std::optional<NotificationObservationToken>& token);

    std::shared_ptr<PermissionStatusCoordinator> permissionStatusCoordinator_;
    std::shared_ptr<ApplicationPort> application_;
    std::shared_ptr<NotificationCenterPort> applicationNotifications_;
    std::optional<PlatformWindowHandle> window_;
    std::shared_ptr<PermissionOnboardingView> view_;
    std::optional<NotificationObservationToken> windowWillCloseObserver_;
    std::optional<NotificationObservationToken> activationPolicyRestorationObserver_;
};

}  // namespace orvane
