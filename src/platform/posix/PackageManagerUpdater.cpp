#include "platform/posix/PackageManagerUpdater.h"

#include "core/Logger.h"

namespace orvane {

namespace {

const Logger& log() {
    return Logger::forCategory(LogCategory::softwareupdates);
}

}  // namespace

void PackageManagerUpdater::startUpdater() {
    log().info("updates come from the package manager; Orvane does not check by itself");
}

UpdaterObservationToken PackageManagerUpdater::observeCanCheckForUpdates(
    std::function<void(bool)> observer, bool initial) {
    // The answer never changes, so only the initial call has anything to tell.
    if (initial) {
        observer(false);
    }
    return ++lastToken_;
}

void PackageManagerUpdater::setAutomaticallyChecksForUpdates(bool enabled) {
    if (enabled) {
        log().info("automatic checks are the package manager's; nothing to switch on here");
    }
}

void PackageManagerUpdater::checkForUpdates() {
    log().info("updates come from the package manager; Orvane does not check by itself");
}

}  // namespace orvane
