#include "app/SparkleSoftwareUpdateService.h"

#include <utility>

#include "core/Logger.h"

namespace orvane {

namespace {

const Logger& softwareUpdatesLog() {
    return Logger::forCategory(LogCategory::softwareupdates);
}

}  // namespace

std::shared_ptr<SparkleSoftwareUpdateService> SparkleSoftwareUpdateService::make(
    std::shared_ptr<UpdaterPort> updater) {
    std::shared_ptr<SparkleSoftwareUpdateService> service(
        new SparkleSoftwareUpdateService(std::move(updater)));
    // Observed only now, since a weak reference to the service exists only once it is owned.
    std::weak_ptr<SparkleSoftwareUpdateService> weak = service;
    service->canCheckForUpdatesSubscription_ =
        service->standardUpdaterController_->observeCanCheckForUpdates(
            [weak](bool canCheck) {
                if (auto strong = weak.lock()) {
                    strong->canCheckForUpdates_.set(canCheck);
                }
            },
            true);
    softwareUpdatesLog().info("Sparkle updater started.");
    return service;
}

SparkleSoftwareUpdateService::SparkleSoftwareUpdateService(std::shared_ptr<UpdaterPort> updater)
    : standardUpdaterController_(std::move(updater)) {
    standardUpdaterController_->startUpdater();
}

SparkleSoftwareUpdateService::~SparkleSoftwareUpdateService() {
    if (canCheckForUpdatesSubscription_) {
        standardUpdaterController_->removeCanCheckForUpdatesObserver(
            *canCheckForUpdatesSubscription_);
    }
}

ObservationToken SparkleSoftwareUpdateService::observeCanCheckForUpdates(
    std::function<void(const bool&)> observer) {
    return canCheckForUpdates_.subscribe(std::move(observer));
}

void SparkleSoftwareUpdateService::removeCanCheckForUpdatesObserver(ObservationToken token) {
    canCheckForUpdates_.unsubscribe(token);
}

bool SparkleSoftwareUpdateService::automaticallyChecksForUpdates() const {
    return standardUpdaterController_->automaticallyChecksForUpdates();
}

void SparkleSoftwareUpdateService::setAutomaticallyChecksForUpdates(bool enabled) {
    standardUpdaterController_->setAutomaticallyChecksForUpdates(enabled);
    softwareUpdatesLog().info("Automatic update checks set to %{bool,public}d.", enabled);
}

void SparkleSoftwareUpdateService::checkForUpdates() {
    softwareUpdatesLog().info("User-initiated update check requested.");
    standardUpdaterController_->checkForUpdates();
}

}  // namespace orvane
