// The software update service on the updater framework: starts the updater at construction,
// mirrors whether a check is possible, and forwards the user's two actions.
#pragma once

#include <memory>
#include <optional>

#include "core/Observable.h"
#include "core/SoftwareUpdateService.h"
#include "platform/UpdaterPort.h"

namespace orvane {

// Made through `make` and held by a std::shared_ptr: the updater's observation holds the service
// weakly, so that a notification arriving after it is gone does nothing.
class SparkleSoftwareUpdateService final : public SoftwareUpdateService {
  public:
    // Starts the updater and observes it; the updater's current ability to check is known by the
    // time this returns.
    static std::shared_ptr<SparkleSoftwareUpdateService> make(std::shared_ptr<UpdaterPort> updater);

    ~SparkleSoftwareUpdateService() override;
    SparkleSoftwareUpdateService(const SparkleSoftwareUpdateService&) = delete;
    SparkleSoftwareUpdateService& operator=(const SparkleSoftwareUpdateService&) = delete;

    // Observers hear only of real changes, on the thread on which the updater changed it.
    bool canCheckForUpdates() const override { return canCheckForUpdates_.value(); }
    ObservationToken observeCanCheckForUpdates(std::function<void(const bool&)> observer) override;
    void removeCanCheckForUpdatesObserver(ObservationToken token) override;

    // The updater keeps this setting; the service holds no copy.
    bool automaticallyChecksForUpdates() const override;
    void setAutomaticallyChecksForUpdates(bool enabled) override;
    // Not guarded by `canCheckForUpdates`: the callers disable their controls instead.
    void checkForUpdates() override;
    std::string externalUpdateSource() const override {
        return standardUpdaterController_->externalUpdateSource();
    }

  private:
    explicit SparkleSoftwareUpdateService(std::shared_ptr<UpdaterPort> updater);

    Observable<bool> canCheckForUpdates_{false};
    std::shared_ptr<UpdaterPort> standardUpdaterController_;
    std::optional<UpdaterObservationToken> canCheckForUpdatesSubscription_;
};

}  // namespace orvane
