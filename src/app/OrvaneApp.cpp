#include "app/OrvaneApp.h"

#include <utility>

namespace orvane {

OrvaneApp::OrvaneApp(OrvaneApplicationDelegate::Platform platform)
    : applicationNotifications_(platform.applicationNotifications),
      delegate_(OrvaneApplicationDelegate::make(std::move(platform))) {}

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
