// The simulated software updater: whether it can check is set from outside and, like the real
// updater's key-value observation, reported to observers on every set, changed or not.
#pragma once

#include <cstddef>
#include <map>

#include "platform/UpdaterPort.h"

namespace orvane {

class SimulatedUpdater : public UpdaterPort {
  public:
    void startUpdater() override { ++startCount_; }
    bool canCheckForUpdates() const override { return canCheckForUpdates_; }
    UpdaterObservationToken observeCanCheckForUpdates(std::function<void(bool)> observer,
                                                      bool initial) override;
    void removeCanCheckForUpdatesObserver(UpdaterObservationToken token) override;
    bool automaticallyChecksForUpdates() const override { return automaticallyChecks_; }
    void setAutomaticallyChecksForUpdates(bool enabled) override { automaticallyChecks_ = enabled; }
    void checkForUpdates() override { ++checkCount_; }
    // The simulated updater checks by itself.
    std::string externalUpdateSource() const override { return {}; }

    void setCanCheckForUpdates(bool canCheck);

    std::size_t startCount() const { return startCount_; }
    std::size_t checkCount() const { return checkCount_; }
    std::size_t observerCount() const { return observers_.size(); }

  private:
    bool canCheckForUpdates_ = false;
    bool automaticallyChecks_ = false;
    std::size_t startCount_ = 0;
    std::size_t checkCount_ = 0;
    UpdaterObservationToken lastToken_ = 0;
    std::map<UpdaterObservationToken, std::function<void(bool)>> observers_;
};

}  // namespace orvane
