// Software updates on Linux come from the package manager: the updater never checks by itself and
// says so once when it starts.
#pragma once

#include "platform/UpdaterPort.h"

namespace orvane {

class PackageManagerUpdater final : public UpdaterPort {
  public:
    void startUpdater() override;
    bool canCheckForUpdates() const override { return false; }
    UpdaterObservationToken observeCanCheckForUpdates(std::function<void(bool)> observer,
                                                      bool initial) override;
    void removeCanCheckForUpdatesObserver(UpdaterObservationToken) override {}
    bool automaticallyChecksForUpdates() const override { return false; }
    void setAutomaticallyChecksForUpdates(bool enabled) override;
    void checkForUpdates() override;

  private:
    UpdaterObservationToken lastToken_ = 0;
};

}  // namespace orvane
