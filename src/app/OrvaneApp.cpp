#include "app/OrvaneApp.h"

#include <utility>

namespace orvane {

OrvaneApp::OrvaneApp(OrvaneApplicationDelegate::Platform platform)
    : applicationNotifications_(platform.applicationNotifications) {
    const auto application = platform.application;
    const auto permissions = platform.permissions;
    SettingsView::Dependencies settings{.loginItem = platform.loginItem,
                                        .bundle = platform.bundle,
                                        .mainRunLoop = platform.mainRunLoop,
                                        .application = application,
                                        .applicationNotifications = applicationNotifications_};
    delegate_ = OrvaneApplicationDelegate::make(std::move(platform));
    std::weak_ptr<OrvaneApplicationDelegate> weakDelegate = delegate_;
    settings.preferencesProvider = delegate_->preferencesStore();
    settings.permissionStatusProviding = delegate_->permissionStatusCoordinator();
    settings.softwareUpdateService = delegate_->softwareUpdateService();
    settings.showWelcomeWindow = [weakDelegate] {
        if (auto delegate = weakDelegate.lock()) {
            delegate->showWelcomeWindow();
        }
    };
    settingsView_ = SettingsView::make(std::move(settings));
    menuBarScene_ = std::make_unique<MenuBarScene>(
        delegate_->preferencesStore(),
        std::make_unique<MenuContent>(
            [application] { application->showSettingsWindow(); },
            delegate_->permissionStatusCoordinator(), delegate_->softwareUpdateService(),
            delegate_->bugReportComposer(), application,
            [permissions](const std::string& url) { permissions->openURL(url); }));
}

OrvaneApp::~OrvaneApp() {
    if (didBecomeActiveObservation_) {
        applicationNotifications_->removeObserver(*didBecomeActiveObservation_);
    }
}

void OrvaneApp::finishLaunching() {
    if (hasTerminated_ || didBecomeActiveObservation_) {
        return;
    }
    delegate_->applicationDidFinishLaunching();
    std::weak_ptr<OrvaneApplicationDelegate> weakDelegate = delegate_;
    didBecomeActiveObservation_ = applicationNotifications_->addObserver(
        applicationDidBecomeActiveNotification, [weakDelegate](const PlatformNotification&) {
            if (auto delegate = weakDelegate.lock()) {
                delegate->applicationDidBecomeActive();
            }
        });
}

void OrvaneApp::terminate() {
    if (hasTerminated_) {
        return;
    }
    hasTerminated_ = true;
    if (didBecomeActiveObservation_) {
        applicationNotifications_->removeObserver(*didBecomeActiveObservation_);
        didBecomeActiveObservation_.reset();
    }
    delegate_->applicationWillTerminate();
}

}  // namespace orvane
