#include "permissions/PermissionOnboardingWindowController.h"

#include <utility>

#include "core/Logger.h"

namespace orvane {

namespace {

const Logger& permissionLog() {
    return Logger::forCategory(LogCategory::permission);
}

// Titled and closable: the window can be neither miniaturized nor resized.
constexpr std::uint64_t welcomeWindowStyleMask =
    window_style_mask::titled | window_style_mask::closable;

}  // namespace

std::shared_ptr<PermissionOnboardingWindowController> PermissionOnboardingWindowController::make(
    std::shared_ptr<PermissionStatusCoordinator> coordinator,
    std::shared_ptr<ApplicationPort> application,
    std::shared_ptr<NotificationCenterPort> applicationNotifications) {
    return std::shared_ptr<PermissionOnboardingWindowController>(
        new PermissionOnboardingWindowController(std::move(coordinator), std::move(application),
                                                 std::move(applicationNotifications)));
}

PermissionOnboardingWindowController::PermissionOnboardingWindowController(
    std::shared_ptr<PermissionStatusCoordinator> coordinator,
    std::shared_ptr<ApplicationPort> application,
    std::shared_ptr<NotificationCenterPort> applicationNotifications)
    : permissionStatusCoordinator_(std::move(coordinator)),
      application_(std::move(application)),
      applicationNotifications_(std::move(applicationNotifications)) {}

PermissionOnboardingWindowController::~PermissionOnboardingWindowController() {
    removeObserver(windowWillCloseObserver_);
    removeObserver(activationPolicyRestorationObserver_);
}

void PermissionOnboardingWindowController::showIfRequiredPermissionsAreMissing() {
    if (window_) {
        return;
    }
    for (auto capability : requiredPermissionCapabilities) {
        if (permissionStatusCoordinator_->status(capability) == PermissionGrantStatus::notGranted) {
            show();
            return;
        }
    }
    permissionLog().info("permission onboarding skipped — required permissions already granted");
}

void PermissionOnboardingWindowController::show() {
    permissionLog().info("showing permission onboarding");
    std::weak_ptr<PermissionOnboardingWindowController> weak = weak_from_this();
    auto closeFromButton = [weak] {
        if (auto strong = weak.lock()) {
            strong->closeWindow();
        }
    };
    auto view = std::make_shared<PermissionOnboardingView>(permissionStatusCoordinator_,
                                                           closeFromButton, closeFromButton);
    const auto window = application_->makeWindow(view);
    application_->setTitle(window, "Welcome to Orvane");
    application_->setStyleMask(window, welcomeWindowStyleMask);
    application_->setReleasedWhenClosed(window, false);
    application_->center(window);

    // A window shown over an open one would otherwise leave the first one's observer behind, and
    // its closing would clear the new window.
    removeObserver(windowWillCloseObserver_);
    windowWillCloseObserver_ = applicationNotifications_->addObserver(
        windowWillCloseNotification, [weak, window](const PlatformNotification& notification) {
            if (notification.object != window) {
                return;
            }
            if (auto strong = weak.lock()) {
                strong->windowWillClose(window);
            }
        });
    removeObserver(activationPolicyRestorationObserver_);
    application_->setActivationPolicy(ApplicationActivationPolicy::regular);
    application_->activate();
    application_->makeKeyAndOrderFront(window);
    // Kept before polling starts: the first refresh may report a revocation, whose handler must
    // find this window open and raise it rather than build a second one.
    window_ = window;
    view_ = std::move(view);
    permissionStatusCoordinator_->startPolling();
}

std::optional<PlatformWindowHandle> PermissionOnboardingWindowController::window() const {
    return window_;
}

std::shared_ptr<PermissionOnboardingView> PermissionOnboardingWindowController::view() const {
    return view_;
}

bool PermissionOnboardingWindowController::isWaitingToRestoreActivationPolicy() const {
    return activationPolicyRestorationObserver_.has_value();
}

void PermissionOnboardingWindowController::closeWindow() {
    if (window_) {
        application_->close(*window_);
    }
}

void PermissionOnboardingWindowController::windowWillClose(PlatformWindowHandle closing) {
    permissionLog().info("permission onboarding closed");
    permissionStatusCoordinator_->stopPolling();
    removeObserver(windowWillCloseObserver_);
    window_.reset();
    view_.reset();
    if (isAnyUserWindowOpen(closing)) {
        armActivationPolicyRestoration();
    } else {
        application_->setActivationPolicy(ApplicationActivationPolicy::accessory);
    }
}

void PermissionOnboardingWindowController::armActivationPolicyRestoration() {
    if (activationPolicyRestorationObserver_) {
        return;
    }
    std::weak_ptr<PermissionOnboardingWindowController> weak = weak_from_this();
    activationPolicyRestorationObserver_ = applicationNotifications_->addObserver(
        windowWillCloseNotification, [weak](const PlatformNotification& notification) {
            if (auto strong = weak.lock()) {
                strong->otherWindowWillClose(notification.object);
            }
        });
}

void PermissionOnboardingWindowController::otherWindowWillClose(
    std::optional<PlatformWindowHandle> closing) {
    if (isAnyUserWindowOpen(closing)) {
        return;
    }
    application_->setActivationPolicy(ApplicationActivationPolicy::accessory);
    removeObserver(activationPolicyRestorationObserver_);
}

// Panels (the overlay) and untitled windows (the menu bar's) never keep the application regular.
bool PermissionOnboardingWindowController::isAnyUserWindowOpen(
    std::optional<PlatformWindowHandle> excluding) const {
    for (auto window : application_->windows()) {
        if (window != excluding && application_->isVisible(window) &&
            (application_->styleMask(window) & window_style_mask::titled) != 0 &&
            !application_->isPanel(window)) {
            return true;
        }
    }
    return false;
}

void PermissionOnboardingWindowController::removeObserver(
    std::optional<NotificationObservationToken>& token) {
    if (token) {
        applicationNotifications_->removeObserver(*token);
        token.reset();
    }
}

}  // namespace orvane
