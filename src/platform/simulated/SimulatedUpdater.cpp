#include "platform/simulated/SimulatedUpdater.h"

#include <utility>

namespace orvane {

UpdaterObservationToken SimulatedUpdater::observeCanCheckForUpdates(
    std::function<void(bool)> observer, bool initial) {
    const UpdaterObservationToken token = ++lastToken_;
    observers_.emplace(token, std::move(observer));
    if (initial) {
        observers_.at(token)(canCheckForUpdates_);
    }
    return token;
}

void SimulatedUpdater::removeCanCheckForUpdatesObserver(UpdaterObservationToken token) {
    observers_.erase(token);
}

void SimulatedUpdater::setCanCheckForUpdates(bool canCheck) {
    canCheckForUpdates_ = canCheck;
    // A copy, so that an observer may remove itself while being told.
    auto observers = observers_;
    for (const auto& [token, observer] : observers) {
        observer(canCheck);
    }
}

}  // namespace orvane
