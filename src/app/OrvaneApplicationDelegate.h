// The composition root and the life of the program: builds every long-lived service in a fixed
// order, starts tracking and interception at launch, keeps retrying the event tap until
// Accessibility allows it, reacts to a revocation, and tears interception down at termination.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/BugReportComposer.h"
#include "core/Logger.h"
#include "core/SoftwareUpdateService.h"
#include "core/SwitcherSessionCoordinator.h"
#include "core/Wording.h"
#include "interception/GlobalShortcutInterceptor.h"
#include "launcher/ApplicationFolders.h"
#include "launcher/LauncherSessionCoordinator.h"
#include "overlay/SwitcherOverlayCoordinator.h"
#include "permissions/PermissionOnboardingWindowController.h"
#include "permissions/PermissionStatusCoordinator.h"
#include "platform/AccessibilityPort.h"
#include "platform/ApplicationLauncherPort.h"
#include "platform/ApplicationPort.h"
#include "platform/BundlePort.h"
#include "platform/ClockPort.h"
#include "platform/DynamicLibraryPort.h"
#include "platform/EventTapPort.h"
#include "platform/FileManagerPort.h"
#include "platform/LoginItemPort.h"
#include "platform/NotificationCenterPort.h"
#include "platform/OverlayPanelPort.h"
#include "platform/PasteboardPort.h"
#include "platform/PermissionPort.h"
#include "platform/RunLoopPort.h"
#include "platform/ScreenCapturePort.h"
#include "platform/ScreenPort.h"
#include "platform/SoundPort.h"
#include "platform/SystemInformationPort.h"
#include "platform/UpdaterPort.h"
#include "platform/UrlComponentsPort.h"
#include "platform/UserDefaultsPort.h"
#include "platform/WindowListPort.h"
#include "platform/WorkspacePort.h"
#include "preferences/PreferencesStore.h"
#include "recency/MostRecentlyUsedWindowTracker.h"

namespace orvane {

class OrvaneApplicationDelegate final
    : public std::enable_shared_from_this<OrvaneApplicationDelegate> {
  public:
    static constexpr double interceptionRetryInterval = 3.0;

    // Everything the program reaches of its platform. The backend fills it once, in `main`.
    struct Platform {
        ProcessIdentifier currentProcessIdentifier = 0;
        std::shared_ptr<UserDefaultsPort> userDefaults;
        std::shared_ptr<PermissionPort> permissions;
        std::shared_ptr<RunLoopPort> mainRunLoop;
        std::shared_ptr<ClockPort> clock;
        std::shared_ptr<ApplicationPort> application;
        std::shared_ptr<NotificationCenterPort> applicationNotifications;
        std::shared_ptr<AccessibilityPort> accessibility;
        std::shared_ptr<WindowListPort> windowList;
        std::shared_ptr<WorkspacePort> workspace;
        std::shared_ptr<NotificationCenterPort> workspaceNotifications;
        std::shared_ptr<NotificationCenterPort> distributedNotifications;
        std::shared_ptr<EventTapPort> eventTaps;
        std::shared_ptr<DynamicLibraryPort> privateFocusLibrary;
        std::shared_ptr<ScreenCapturePort> screenCapture;
        std::shared_ptr<ScreenPort> screens;
        std::shared_ptr<OverlayPanelPort> overlayPanel;
        std::shared_ptr<FileManagerPort> fileManager;
        // The platform's own application folders; the ".app" bundle folders when unset.
        std::optional<ApplicationFolders> applicationFolders;
        std::shared_ptr<ApplicationLauncherPort> applicationLauncher;
        std::shared_ptr<SoundPort> sound;
        std::shared_ptr<UpdaterPort> updater;
        std::shared_ptr<BundlePort> bundle;
        std::shared_ptr<SystemInformationPort> systemInformation;
        std::shared_ptr<PasteboardPort> pasteboard;
        std::shared_ptr<UrlComponentsPort> urlComponents;
        std::shared_ptr<LoginItemPort> loginItem;
        std::string supportAddress;
        // The desktop's words for the platform's things, in the texts the program composes.
        Wording wording;
    };

    // Builds every service; the updater starts here, tracking and the tap only at launch.
    static std::shared_ptr<OrvaneApplicationDelegate> make(Platform platform);

    OrvaneApplicationDelegate(const OrvaneApplicationDelegate&) = delete;
    OrvaneApplicationDelegate& operator=(const OrvaneApplicationDelegate&) = delete;

    void applicationDidFinishLaunching();
    // Tries for the tap at once when a retry is due, and repairs a tap the system disabled.
    void applicationDidBecomeActive();
    // Opens the General pane when no window is visible; always false.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    // The program lives on with no window open.
    bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }
    // Interception goes before tracking stops: a gesture in flight activates nothing.
    void applicationWillTerminate();
    // Brings an open welcome window forward instead of building a second one.
    void showWelcomeWindow();

    bool isRetryingInterception() const { return interceptionRetryTimer_.has_value(); }

    const std::shared_ptr<PreferencesStore>& preferencesStore() const { return preferencesStore_; }
    const std::shared_ptr<PermissionStatusCoordinator>& permissionStatusCoordinator() const {
        return permissionStatusCoordinator_;
    }
    const std::shared_ptr<SoftwareUpdateService>& softwareUpdateService() const {
        return softwareUpdateService_;
    }
    const std::shared_ptr<BugReportComposer>& bugReportComposer() const {
        return bugReportComposer_;
    }
    const std::shared_ptr<MostRecentlyUsedWindowTracker>& recencyTracker() const {
        return recencyTracker_;
    }
    const std::shared_ptr<SwitcherOverlayCoordinator>& overlayCoordinator() const {
        return overlayCoordinator_;
    }
    const std::shared_ptr<SwitcherSessionCoordinator>& switcherSessionCoordinator() const {
        return switcherSessionCoordinator_;
    }
    const std::shared_ptr<LauncherSessionCoordinator>& launcherSessionCoordinator() const {
        return launcherSessionCoordinator_;
    }
    const std::shared_ptr<GlobalShortcutInterceptor>& globalShortcutInterceptor() const {
        return globalShortcutInterceptor_;
    }
    const std::shared_ptr<PermissionOnboardingWindowController>&
    permissionOnboardingWindowController() const {
        return permissionOnboardingWindowController_;
    }

  private:
    explicit OrvaneApplicationDelegate(Platform platform);

    void startInterception();
    void retryInterception();
    void handleAccessibilityRevocation();
    void cancelRetryTimer();

    Platform platform_;
    const Logger& log_ = Logger::forCategory(LogCategory::lifecycle);
    std::shared_ptr<PreferencesStore> preferencesStore_;
    std::shared_ptr<PermissionStatusCoordinator> permissionStatusCoordinator_;
    std::shared_ptr<SoftwareUpdateService> softwareUpdateService_;
    std::shared_ptr<BugReportComposer> bugReportComposer_;
    std::shared_ptr<MostRecentlyUsedWindowTracker> recencyTracker_;
    std::shared_ptr<SwitcherOverlayCoordinator> overlayCoordinator_;
    std::shared_ptr<SwitcherSessionCoordinator> switcherSessionCoordinator_;
    std::shared_ptr<LauncherSessionCoordinator> launcherSessionCoordinator_;
    std::shared_ptr<GlobalShortcutInterceptor> globalShortcutInterceptor_;
    std::shared_ptr<PermissionOnboardingWindowController> permissionOnboardingWindowController_;
    std::optional<TimerToken> interceptionRetryTimer_;
};

}  // namespace orvane
