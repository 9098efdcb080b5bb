#include "app/OrvaneApplicationDelegate.h"

#include <utility>

#include "activation/AccessibilityWindowActivationService.h"
#include "activation/SkyLightPrivateWindowFocusService.h"
#include "app/SparkleSoftwareUpdateService.h"
#include "enumeration/AccessibilityWindowEnumerationService.h"
#include "launcher/InstalledApplicationLauncherMode.h"
#include "launcher/WindowLauncherMode.h"
#include "preferences/SettingsPane.h"
#include "recency/AccessibilityWindowFocusEventSource.h"
#include "thumbnails/ScreenCaptureKitWindowThumbnailCaptureService.h"

namespace orvane {

std::shared_ptr<OrvaneApplicationDelegate> OrvaneApplicationDelegate::make(Platform platform) {
    return std::shared_ptr<OrvaneApplicationDelegate>(
        new OrvaneApplicationDelegate(std::move(platform)));
}

// The order is the program's: each service is handed only what was built before it.
OrvaneApplicationDelegate::OrvaneApplicationDelegate(Platform platform)
    : platform_(std::move(platform)) {
    const auto& p = platform_;
    preferencesStore_ = std::make_shared<PreferencesStore>(p.userDefaults);
    permissionStatusCoordinator_ =
        PermissionStatusCoordinator::make(p.permissions, p.mainRunLoop, p.applicationNotifications);

    auto enumeration = std::make_shared<AccessibilityWindowEnumerationService>(
        p.currentProcessIdentifier, p.windowList, p.accessibility, p.workspace);
    auto focusEventSource = std::make_shared<AccessibilityWindowFocusEventSource>(
        p.workspace, p.workspaceNotifications, p.accessibility, p.mainRunLoop);
    auto clock = p.clock;
    auto currentDate = [clock] { return clock->now(); };
    recencyTracker_ =
        std::make_shared<MostRecentlyUsedWindowTracker>(focusEventSource, currentDate);
    focusEventSource->setObserver(recencyTracker_);

    auto privateFocus = std::make_shared<SkyLightPrivateWindowFocusService>(p.privateFocusLibrary);
    auto activation = std::make_shared<AccessibilityWindowActivationService>(
        recencyTracker_, privateFocus, p.accessibility, p.workspace);
    auto thumbnails = std::make_shared<ScreenCaptureKitWindowThumbnailCaptureService>(
        currentDate, p.screenCapture, p.mainRunLoop);
    overlayCoordinator_ = std::make_shared<SwitcherOverlayCoordinator>(
        thumbnails, preferencesStore_, p.screens, p.overlayPanel, p.mainRunLoop);

    auto workspace = p.workspace;
    switcherSessionCoordinator_ = std::make_shared<SwitcherSessionCoordinator>(
        enumeration, recencyTracker_, overlayCoordinator_, activation,
        [workspace]() -> std::optional<ProcessIdentifier> {
            auto frontmost = workspace->frontmostApplication();
            if (!frontmost) {
                return std::nullopt;
            }
            return frontmost->processIdentifier;
        });
    auto windowMode = std::make_shared<WindowLauncherMode>(enumeration, recencyTracker_, activation,
                                                           p.workspace, p.sound);
    auto applicationMode = std::make_shared<InstalledApplicationLauncherMode>(
        p.fileManager, p.applicationLauncher, p.sound, p.mainRunLoop, currentDate,
        p.applicationFolders);
    launcherSessionCoordinator_ = std::make_shared<LauncherSessionCoordinator>(
        windowMode, applicationMode, overlayCoordinator_);

    globalShortcutInterceptor_ = std::make_shared<GlobalShortcutInterceptor>(
        switcherSessionCoordinator_, launcherSessionCoordinator_, preferencesStore_,
        GlobalShortcutInterceptor::Platform{p.eventTaps, p.workspaceNotifications,
                                            p.distributedNotifications, p.mainRunLoop});
    softwareUpdateService_ = SparkleSoftwareUpdateService::make(p.updater);
    bugReportComposer_ = std::make_shared<BugReportComposer>(
        permissionStatusCoordinator_, p.bundle, p.systemInformation, p.pasteboard, p.urlComponents,
        p.supportAddress, p.wording);
    permissionOnboardingWindowController_ = PermissionOnboardingWindowController::make(
        permissionStatusCoordinator_, p.application, p.applicationNotifications);
}

void OrvaneApplicationDelegate::applicationDidFinishLaunching() {
    log_.info("applicationDidFinishLaunching — starting engine");
    recencyTracker_->startTracking();
    startInterception();
    // Installed after the first try for the tap, so that a launch without permission is no
    // revocation.
    std::weak_ptr<OrvaneApplicationDelegate> weakSelf = weak_from_this();
    permissionStatusCoordinator_->setAccessibilityRevocationHandler([weakSelf] {
        if (auto self = weakSelf.lock()) {
            self->handleAccessibilityRevocation();
        }
    });
    permissionOnboardingWindowController_->showIfRequiredPermissionsAreMissing();
    log_.info("launch complete");
}

void OrvaneApplicationDelegate::startInterception() {
    cancelRetryTimer();
    if (globalShortcutInterceptor_->installEventTap()) {
        log_.info("global shortcut interception active");
        return;
    }
    log_.info("event tap unavailable (permissions pending) — retrying in background");
    std::weak_ptr<OrvaneApplicationDelegate> weakSelf = weak_from_this();
    interceptionRetryTimer_ =
        platform_.mainRunLoop->scheduleTimer(interceptionRetryInterval, true, 0.0, [weakSelf] {
            if (auto self = weakSelf.lock()) {
                self->retryInterception();
            }
        });
}

void OrvaneApplicationDelegate::retryInterception() {
    // Without a timer no retry is due; the activation sweep relies on that.
    if (!interceptionRetryTimer_) {
        return;
    }
    if (!globalShortcutInterceptor_->installEventTap()) {
        return;
    }
    log_.info("global shortcut interception active after retry");
    cancelRetryTimer();
}

void OrvaneApplicationDelegate::cancelRetryTimer() {
    if (interceptionRetryTimer_) {
        platform_.mainRunLoop->cancelTimer(*interceptionRetryTimer_);
        interceptionRetryTimer_.reset();
    }
}

void OrvaneApplicationDelegate::applicationDidBecomeActive() {
    retryInterception();
    const auto& tap = globalShortcutInterceptor_->eventTap();
    if (!tap || globalShortcutInterceptor_->isEventTapEnabled()) {
        return;
    }
    platform_.eventTaps->enableTap(*tap, true);
    globalShortcutInterceptor_->resetInteractionState("tap found disabled on activation sweep");
}

bool OrvaneApplicationDelegate::applicationShouldHandleReopen(bool hasVisibleWindows) {
    if (!hasVisibleWindows) {
        auto application = platform_.application;
        openSettingsPane(
            SettingsPane::general, *platform_.applicationNotifications,
            [application] { application->activate(); },
            [application] { return application->showSettingsWindow(); });
    }
    return false;
}

void OrvaneApplicationDelegate::handleAccessibilityRevocation() {
    log_.error("accessibility revoked while running — tearing down interception");
    globalShortcutInterceptor_->removeEventTap();
    startInterception();
    showWelcomeWindow();
}

void OrvaneApplicationDelegate::showWelcomeWindow() {
    if (auto window = permissionOnboardingWindowController_->window()) {
        platform_.application->activate();
        platform_.application->makeKeyAndOrderFront(*window);
        return;
    }
    permissionOnboardingWindowController_->show();
}

void OrvaneApplicationDelegate::applicationWillTerminate() {
    log_.info("applicationWillTerminate — tearing down");
    cancelRetryTimer();
    globalShortcutInterceptor_->removeEventTap();
    recencyTracker_->stopTracking();
}

}  // namespace orvane
