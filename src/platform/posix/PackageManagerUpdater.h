// Software updates on Linux come from the package manager: the updater never checks by itself and
// has no control to offer. It tells how new versions arrive: with the system's updates for a
// packaged copy, by building again for one built from source.
#pragma once

#include <filesystem>
#include <string>

#include "platform/UpdaterPort.h"

namespace orvane {

class PackageManagerUpdater final : public UpdaterPort {
  public:
    // `program` is the running executable; `packageDatabase` the folder of dpkg's file lists.
    explicit PackageManagerUpdater(
        const std::filesystem::path& program,
        const std::filesystem::path& packageDatabase = "/var/lib/dpkg/info");

    void startUpdater() override {}
    bool canCheckForUpdates() const override { return false; }
    UpdaterObservationToken observeCanCheckForUpdates(std::function<void(bool)> observer,
                                                      bool initial) override;
    void removeCanCheckForUpdatesObserver(UpdaterObservationToken) override {}
    bool automaticallyChecksForUpdates() const override { return false; }
    void setAutomaticallyChecksForUpdates(bool) override {}
    void checkForUpdates() override {}
    // Decided once: how the running copy was installed does not change while it runs.
    std::string externalUpdateSource() const override { return externalUpdateSource_; }

  private:
    std::string externalUpdateSource_;
    UpdaterObservationToken lastToken_ = 0;
};

}  // namespace orvane
